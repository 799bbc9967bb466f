// While the file is open, its thread is not cancelled, and the signals that tell of a broken pipe
// and of a limit on file sizes are held: they would end a process whose file merely cannot be
// written.
#ifndef QX_PLATFORM_POSIX_TEXT_FILE_NATIVE_H
#define QX_PLATFORM_POSIX_TEXT_FILE_NATIVE_H

#include <string_view>

#include "cancellation.h"
#include "write_signals.h"

namespace platform {

class AppendedTextFile {
  public:
    explicit AppendedTextFile(const char16_t* path);
    ~AppendedTextFile() { Close(); }
    AppendedTextFile(const AppendedTextFile&) = delete;
    AppendedTextFile& operator=(const AppendedTextFile&) = delete;

    bool IsOpen() const noexcept { return m_descriptor >= 0; }
    bool Write(std::string_view lines) noexcept;
    bool Close() noexcept;

  private:
    CancellationOff m_noCancellation;
    WriteSignalsHeld m_noSignals;
    int m_descriptor;
};

}  // namespace platform

#endif

#ifndef QX_PLATFORM_WINDOWS_TEXT_FILE_NATIVE_H
#define QX_PLATFORM_WINDOWS_TEXT_FILE_NATIVE_H

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <string_view>
#include <utility>

#include "system_headers.h"

namespace platform {

class AppendedTextFile {
  public:
    explicit AppendedTextFile(const char16_t* path) noexcept
        : m_descriptor(::_wsopen(Native(path),
                                 _O_WRONLY | _O_APPEND | _O_CREAT | _O_TEXT | _O_NOINHERIT,
                                 _SH_DENYNO, _S_IREAD | _S_IWRITE)) {}
    ~AppendedTextFile() { Close(); }
    AppendedTextFile(const AppendedTextFile&) = delete;
    AppendedTextFile& operator=(const AppendedTextFile&) = delete;

    bool IsOpen() const noexcept { return m_descriptor >= 0; }

    bool Write(std::string_view lines) noexcept {
        const int written =
            ::_write(m_descriptor, lines.data(), static_cast<unsigned>(lines.size()));
        return written >= 0 && static_cast<std::size_t>(written) == lines.size();
    }

    bool Close() noexcept {
        const int descriptor = std::exchange(m_descriptor, -1);
        return descriptor < 0 || ::_close(descriptor) == 0;
    }

  private:
    int m_descriptor;
};

}  // namespace platform

#endif

// While a file is open, its thread is not cancelled and errno is kept; while one is written, the
// signals are held that would end a process whose file merely cannot be written.
#ifndef QX_PLATFORM_POSIX_TEXT_STREAM_NATIVE_H
#define QX_PLATFORM_POSIX_TEXT_STREAM_NATIVE_H

#include <cstdio>
#include <string_view>

#include "cancellation.h"
#include "descriptors.h"
#include "last_error_native.h"
#include "platform/types.h"
#include "write_signals.h"

namespace platform {

class TextReader {
  public:
    explicit TextReader(const char* path) noexcept;
    ~TextReader() = default;
    TextReader(const TextReader&) = delete;
    TextReader& operator=(const TextReader&) = delete;

    bool IsOpen() const noexcept { return static_cast<bool>(m_file); }
    const char* ReadLine(char* line, int count) noexcept;

  private:
    bool HasByte() noexcept;
    int CopyPlainBytes(char* target, int room) noexcept;
    int ReadByte() noexcept;

    CancellationOff m_noCancellation;
    ErrnoKeeper m_keepErrno;
    OwnedDescriptor m_file;
    const char* m_next;
    const char* m_end;
    char m_buffer[1 << 14];
};

class TextWriter {
  public:
    explicit TextWriter(const char* path) noexcept;
    ~TextWriter();
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    bool IsOpen() const noexcept { return m_stream != nullptr; }
    void Write(std::string_view text) noexcept;
    bool Modified(i64* seconds) noexcept;

  private:
    CancellationOff m_noCancellation;
    ErrnoKeeper m_keepErrno;
    WriteSignalsHeld m_noSignals;
    std::FILE* m_stream;
};

}  // namespace platform

#endif

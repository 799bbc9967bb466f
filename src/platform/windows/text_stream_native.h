#ifndef QX_PLATFORM_WINDOWS_TEXT_STREAM_NATIVE_H
#define QX_PLATFORM_WINDOWS_TEXT_STREAM_NATIVE_H

#include <sys/stat.h>

#include <cstdio>
#include <string_view>

#include "platform/streams.h"
#include "platform/types.h"

namespace platform {

// "t" for line ends whatever the process's default.
class TextReader {
  public:
    explicit TextReader(const char* path) noexcept : m_stream(platform::fopen(path, "rt")) {}
    ~TextReader() {
        if (m_stream != nullptr) {
            ::fclose(m_stream);
        }
    }
    TextReader(const TextReader&) = delete;
    TextReader& operator=(const TextReader&) = delete;

    bool IsOpen() const noexcept { return m_stream != nullptr; }
    const char* ReadLine(char* line, int count) noexcept { return ::fgets(line, count, m_stream); }

  private:
    std::FILE* m_stream;
};

class TextWriter {
  public:
    explicit TextWriter(const char* path) noexcept : m_stream(platform::fopen(path, "wt")) {}
    ~TextWriter() {
        if (m_stream != nullptr) {
            ::fclose(m_stream);
        }
    }
    TextWriter(const TextWriter&) = delete;
    TextWriter& operator=(const TextWriter&) = delete;

    bool IsOpen() const noexcept { return m_stream != nullptr; }
    void Write(std::string_view text) noexcept { ::fwrite(text.data(), 1, text.size(), m_stream); }
    bool Modified(i64* seconds) noexcept {
        struct _stat64i32 status;
        const bool told = ::_fstat64i32(::_fileno(m_stream), &status) == 0;
        *seconds = told ? status.st_mtime : *seconds;
        return told;
    }

  private:
    std::FILE* m_stream;
};

inline bool Modified(const char* path, i64* seconds) noexcept {
    struct _stat64i32 status;
    const bool told = ::_stat64i32(path, &status) == 0;
    *seconds = told ? status.st_mtime : *seconds;
    return told;
}

}  // namespace platform

#endif

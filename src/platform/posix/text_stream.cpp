#include "platform/text_stream.h"

#include <sys/stat.h>

#include "descriptors.h"

namespace platform {
namespace {

constexpr mode_t kForAll = 0666;  // less the process's mask
constexpr int kEndOfText = 26;

// A pipe by name would keep its opener waiting for the other end.
OwnedDescriptor OpenRegular(const char* path, int flags) noexcept {
    OwnedDescriptor opened = OpenDescriptor(path, flags | O_NOCTTY | O_NONBLOCK, kForAll);
    struct stat status;
    const bool regular = opened && ::fstat(opened.Get(), &status) == 0 && S_ISREG(status.st_mode);
    return regular ? std::move(opened) : OwnedDescriptor();
}

std::FILE* StreamOf(OwnedDescriptor file, const char* mode) noexcept {
    std::FILE* const stream = file ? ::fdopen(file.Get(), mode) : nullptr;
    if (stream != nullptr) {
        file.Release();
    }
    return stream;
}

}  // namespace

TextReader::TextReader(const char* path) noexcept
    : m_stream(StreamOf(OpenRegular(path, O_RDONLY), "r")) {}

TextReader::~TextReader() {
    if (m_stream != nullptr) {
        std::fclose(m_stream);
    }
}

const char* TextReader::ReadLine(char* line, int count) noexcept {
    int length = 0;
    while (length < count - 1) {
        const int unit = ReadUnit();
        if (unit == EOF) {
            break;
        }
        line[length++] = static_cast<char>(unit);
        if (unit == '\n') {
            break;
        }
    }
    line[length] = '\0';
    return length != 0 ? line : nullptr;
}

// An interrupted read is no end of the file.
int TextReader::ReadByte() noexcept {
    int byte = ::getc_unlocked(m_stream);
    while (byte == EOF && std::ferror(m_stream) != 0 && errno == EINTR) {
        std::clearerr(m_stream);
        byte = ::getc_unlocked(m_stream);
    }
    return byte;
}

int TextReader::ReadUnit() noexcept {
    const int byte = ReadByte();
    if (byte == kEndOfText) {
        std::ungetc(byte, m_stream);  // for the next read, which ends here too
        return EOF;
    }
    if (byte != '\r') {
        return byte;
    }
    const int next = ReadByte();
    if (next == '\n') {
        return next;
    }
    std::ungetc(next, m_stream);
    return byte;
}

TextWriter::TextWriter(const char* path) noexcept
    : m_stream(StreamOf(OpenRegular(path, O_WRONLY | O_CREAT | O_TRUNC), "w")) {}

TextWriter::~TextWriter() {
    if (m_stream != nullptr) {
        std::fclose(m_stream);
    }
}

void TextWriter::Write(std::string_view text) noexcept {
    static_cast<void>(std::fwrite(text.data(), 1, text.size(), m_stream));
}

bool TextWriter::Modified(i64* seconds) noexcept {
    struct stat status;
    if (::fstat(::fileno(m_stream), &status) != 0) {
        return false;
    }
    *seconds = status.st_mtime;
    return true;
}

bool Modified(const char* path, i64* seconds) noexcept {
    const ErrnoKeeper keepErrno;
    struct stat status;
    if (::stat(path, &status) != 0) {
        return false;
    }
    *seconds = status.st_mtime;
    return true;
}

}  // namespace platform

#include "platform/text_stream.h"

#include <sys/stat.h>

#include <algorithm>

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
    : m_file(OpenRegular(path, O_RDONLY)), m_next(m_buffer), m_end(m_buffer) {}

const char* TextReader::ReadLine(char* line, int count) noexcept {
    int length = 0;
    bool ended = false;
    while (length < count - 1 && !ended) {
        length += CopyPlainBytes(line + length, count - 1 - length);
        if (length < count - 1) {
            const int byte = ReadByte();
            ended = byte == EOF || byte == '\n';
            line[length] = static_cast<char>(byte);
            length += byte != EOF ? 1 : 0;
        }
    }
    line[length] = '\0';
    return length != 0 ? line : nullptr;
}

// Reads on where the buffer is used up. An interrupted read is no end of the file.
bool TextReader::HasByte() noexcept {
    if (m_next == m_end) {
        ssize_t count;
        do {
            count = ::read(m_file.Get(), m_buffer, sizeof m_buffer);
        } while (count < 0 && errno == EINTR);
        m_next = m_buffer;
        m_end = m_buffer + (count > 0 ? count : 0);
    }
    return m_next != m_end;
}

// What the buffer has up to a byte that may mean something.
int TextReader::CopyPlainBytes(char* target, int room) noexcept {
    const char* const end = m_next + std::min<std::ptrdiff_t>(room, m_end - m_next);
    int count = 0;
    while (m_next != end && static_cast<unsigned char>(*m_next) > kEndOfText) {
        target[count++] = *m_next++;
    }
    return count;
}

// The end mark stays, so that the next read ends there too.
int TextReader::ReadByte() noexcept {
    if (!HasByte() || *m_next == kEndOfText) {
        return EOF;
    }
    const char byte = *m_next++;
    return byte == '\r' && HasByte() && *m_next == '\n' ? *m_next++
                                                        : static_cast<unsigned char>(byte);
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

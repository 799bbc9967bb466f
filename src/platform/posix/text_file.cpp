#include "platform/text_file.h"

#include <sys/stat.h>

#include <utility>

#include "descriptors.h"
#include "narrow_path.h"
#include "platform/errors.h"

namespace platform {
namespace {

constexpr mode_t kForAll = 0666;  // less the process's mask

// Opening a pipe by name waits for its reader, unless it is asked not to wait for anything.
int OpenForAppend(const char* path) noexcept {
    constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    int opened;
    do {
        opened = ::open(path, kFlags, kForAll);
    } while (opened < 0 && errno == EINTR);
    opened = AboveStandardStreams(opened);
    if (opened >= 0) {
        ::fcntl(opened, F_SETFL, O_APPEND);
    }
    return opened;
}

// Removes the last `bytes` that were written, if they are still the end of a file.
void TakeBack(int descriptor, std::size_t bytes) noexcept {
    const off_t end = ::lseek(descriptor, 0, SEEK_CUR);
    struct stat status;
    if (end >= 0 && ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) &&
        status.st_size == end) {
        // Nobody could do more about a line that stays.
        [[maybe_unused]] const int failed =
            ::ftruncate(descriptor, end - static_cast<off_t>(bytes));
    }
}

}  // namespace

AppendedTextFile::AppendedTextFile(const char16_t* path) {
    ErrnoKeeper keepErrno;
    m_descriptor = OpenForAppend(NarrowPath(path).c_str());
}

bool AppendedTextFile::Write(std::string_view lines) noexcept {
    ErrnoKeeper keepErrno;
    std::size_t written = 0;
    while (written < lines.size()) {
        const ssize_t step = ::write(m_descriptor, lines.data() + written, lines.size() - written);
        if (step > 0) {
            written += static_cast<std::size_t>(step);
        } else if (step == 0 || errno != EINTR) {
            TakeBack(m_descriptor, written);
            return false;
        }
    }
    return true;
}

// An interrupted close has closed.
bool AppendedTextFile::Close() noexcept {
    ErrnoKeeper keepErrno;
    const int descriptor = std::exchange(m_descriptor, -1);
    return descriptor < 0 || ::close(descriptor) == 0 || errno == EINTR;
}

}  // namespace platform

#include "registry_files.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <time.h>

#include <memory>

#include "platform/errors.h"
#include "registry_failure.h"

namespace platform {
namespace {

constexpr i64 kSecond = 1'000'000'000;
constexpr i64 kMillisecond = 1'000'000;

i64 Nanoseconds(const timespec& time) noexcept {
    return kSecond * time.tv_sec + time.tv_nsec;
}

// A time that is no multiple of ten milliseconds was told by the kernel's tick, which is no longer
// than those; others are kept in up to two seconds. With some room for clocks that differ.
i64 LongestStep(i64 time) noexcept {
    return time % (10 * kMillisecond) != 0 ? 100 * kMillisecond : 3 * kSecond;
}

[[noreturn]] void ThrowErrno(int error) {
    throw StoreFailure{NativeErrorFromErrno(error), false};
}

struct Freer {
    void operator()(char* text) const noexcept { ::free(text); }
};

}  // namespace

StorePaths PathsOf(const std::string& database) {
    const std::unique_ptr<char, Freer> real(::realpath(database.c_str(), nullptr));
    if (real == nullptr) {
        ThrowErrno(errno);
    }
    const std::string path = real.get();
    if (path.size() > kMaxDatabasePath) {
        throw StoreFailure{kErrorFilenameExceedsRange, false};
    }
    return {path.substr(0, path.rfind('/') + 1), path, path + "-wal", path + "-shm",
            path + "-journal"};
}

FileState LookAt(const std::string& path) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0) {
        const int error = errno;
        if (error == ENOENT || error == ENOTDIR) {
            return {};
        }
        ThrowErrno(error);
    }
    if (!S_ISREG(status.st_mode)) {
        throw StoreFailure{kErrorBadDatabase, false};
    }
    return {status.st_dev, status.st_ino, status.st_size, Nanoseconds(status.st_mtim)};
}

StoreFiles LookAt(const StorePaths& paths) {
    return {LookAt(paths.m_database), LookAt(paths.m_log), LookAt(paths.m_index)};
}

void SetSideFileModes(const StorePaths& paths, mode_t mode) noexcept {
    for (const std::string& path : {paths.m_log, paths.m_index}) {
        // A file that is not there needs none, and no caller could do better.
        [[maybe_unused]] const int failed =
            ::fchmodat(AT_FDCWD, path.c_str(), mode, AT_SYMLINK_NOFOLLOW);
    }
}

FileWatch::FileWatch(const std::string& path)
    : m_descriptor(OpenDescriptor(path.c_str(), O_PATH | O_NOFOLLOW)) {
    if (!m_descriptor && errno != ENOENT) {
        ThrowErrno(errno);
    }
}

i64 FileWatch::Size() const noexcept {
    struct stat status;
    return ::fstat(m_descriptor.Get(), &status) == 0 && status.st_nlink != 0 ? status.st_size : -1;
}

bool FileWatch::IsWhole() noexcept {
    const i64 size = Size();
    if (size < m_size) {
        return false;
    }
    m_size = size;
    return true;
}

bool FileWatch::Holds(i64 size) const noexcept {
    return Size() >= size;
}

DirectoryWatch::DirectoryWatch(const std::string& path)
    : m_descriptor(OpenDescriptor(path.c_str(), O_PATH | O_DIRECTORY)) {}

void DirectoryWatch::Restart() noexcept {
    timespec now;
    ::clock_gettime(CLOCK_REALTIME_COARSE, &now);
    m_changed = Changed();
    if (m_changed > Nanoseconds(now) - LongestStep(m_changed)) {
        m_changed = kUnknown;
    }
}

bool DirectoryWatch::IsUnchanged() const noexcept {
    return m_changed != kUnknown && m_changed == Changed();
}

i64 DirectoryWatch::Changed() const noexcept {
    struct stat status;
    return ::fstat(m_descriptor.Get(), &status) == 0 ? Nanoseconds(status.st_ctim) : kUnknown;
}

}  // namespace platform

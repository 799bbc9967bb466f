#include "registry_files.h"

#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/errors.h"
#include "registry_failure.h"

namespace platform {
namespace {

constexpr int kFirstDescriptor = 3;

[[noreturn]] void ThrowErrno(int error) {
    throw StoreFailure{NativeErrorFromErrno(error), false};
}

struct Freer {
    void operator()(char* text) const noexcept { ::free(text); }
};

// The program's standard streams may be closed; nothing of ours takes their place.
int OpenToName(const char* path) noexcept {
    const int file = ::open(path, O_PATH | O_CLOEXEC | O_NOFOLLOW);
    if (file < 0 || file >= kFirstDescriptor) {
        return file;
    }
    const int moved = ::fcntl(file, F_DUPFD_CLOEXEC, kFirstDescriptor);
    const int error = errno;
    ::close(file);
    errno = error;
    return moved;
}

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
    return {path, path + "-wal", path + "-shm", path + "-journal"};
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
    return {status.st_dev, status.st_ino, status.st_size,
            i64{1'000'000'000} * status.st_mtim.tv_sec + status.st_mtim.tv_nsec};
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

FileWatch::FileWatch(const std::string& path) : m_descriptor(OpenToName(path.c_str())) {
    if (m_descriptor < 0 && errno != ENOENT) {
        ThrowErrno(errno);
    }
}

FileWatch::~FileWatch() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

FileWatch& FileWatch::operator=(FileWatch&& other) noexcept {
    std::swap(m_descriptor, other.m_descriptor);
    std::swap(m_size, other.m_size);
    return *this;
}

i64 FileWatch::Size() const noexcept {
    struct stat status;
    return ::fstat(m_descriptor, &status) == 0 && status.st_nlink != 0 ? status.st_size : -1;
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

}  // namespace platform

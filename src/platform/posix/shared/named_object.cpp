#include "named_object.h"

#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>

#include <algorithm>

#include "../cancellation.h"
#include "platform/errors.h"

namespace platform {
namespace {

constexpr mode_t kOpenToAll = 0666;
constexpr int kFileFlags = O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY;
constexpr off_t kGuard = 0;
constexpr off_t kUse = 1;

// How long an opening waits for others. Each wait sleeps longer than the one before.
class Patience {
  public:
    bool Wait() noexcept {
        if (m_waited >= kLimit) {
            return false;
        }
        const timespec pause = {0, m_pause};
        ::nanosleep(&pause, nullptr);
        m_waited += m_pause;
        m_pause = std::min(2 * m_pause, kLongestPause);
        return true;
    }

  private:
    static constexpr long kLongestPause = 2'000'000;
    static constexpr i64 kLimit = 10'000'000'000;

    long m_pause = 20'000;
    i64 m_waited = 0;
};

struct flock LockOf(off_t byte, short type) noexcept {
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte;
    lock.l_len = 1;
    return lock;
}

// 0 or the value of errno; EAGAIN if somebody else's lock is in the way.
int TryLock(int file, off_t byte, short type) noexcept {
    struct flock lock = LockOf(byte, type);
    if (::fcntl(file, F_OFD_SETLK, &lock) == 0) {
        return 0;
    }
    return errno == EACCES ? EAGAIN : errno;
}

// Never left to the closing: a child that was forked meanwhile would go on holding it.
void UnlockGuard(int file) noexcept {
    TryLock(file, kGuard, F_UNLCK);
}

// What cannot be found out counts as a use.
bool IsUsed(int file) noexcept {
    struct flock lock = LockOf(kUse, F_WRLCK);
    return ::fcntl(file, F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

u32 ErrorOfLock(int error) noexcept {
    return error == EAGAIN ? static_cast<u32>(kErrorBusy) : NativeErrorFromErrno(error);
}

u32 LockGuard(int file, Patience& patience) noexcept {
    for (;;) {
        const int error = TryLock(file, kGuard, F_WRLCK);
        if (error != EAGAIN || !patience.Wait()) {
            return error == 0 ? static_cast<u32>(kErrorSuccess) : ErrorOfLock(error);
        }
    }
}

u32 ErrorOfOpening(int error) noexcept {
    switch (error) {
        case EEXIST:
            return kErrorBusy;
        case ELOOP:
        case EISDIR:
        case ENXIO:
            return kErrorInvalidHandle;
        case EMFILE:
        case ENFILE:
            return kErrorTooManyOpenFiles;
        default:
            return NativeErrorFromErrno(error);
    }
}

OwnedDescriptor MakeFile(const ObjectPath& path) noexcept {
    OwnedDescriptor file = OpenDescriptor(path.Text(), kFileFlags | O_CREAT | O_EXCL, kOpenToAll);
    if (!file && errno == ENOENT) {
        errno = ENOTDIR;
    }
    return file;
}

// A new file's mode heeds its maker's mask until it is filled. Another user is refused meanwhile.
bool IsBeingMade(const ObjectPath& path) noexcept {
    struct stat status;
    timespec now;
    ::clock_gettime(CLOCK_REALTIME, &now);
    return ::lstat(path.Text(), &status) == 0 && S_ISREG(status.st_mode) &&
           (status.st_mode & kOpenToAll) != kOpenToAll && now.tv_sec - status.st_ctim.tv_sec <= 1;
}

// With errno set on failure. What exists is opened without the wish to make it, which
// fs.protected_regular refuses for another user's file.
OwnedDescriptor TryOpenFile(const ObjectPath& path, bool make) noexcept {
    OwnedDescriptor file = OpenDescriptor(path.Text(), kFileFlags);
    return !file && errno == ENOENT && make ? MakeFile(path) : std::move(file);
}

OwnedDescriptor OpenFile(const ObjectPath& path, bool make, Patience& patience,
                         u32* error) noexcept {
    for (;;) {
        OwnedDescriptor file = TryOpenFile(path, make);
        const int failure = errno;
        if (file) {
            return file;
        }
        *error = ErrorOfOpening(failure);
        const bool passing = failure == EEXIST || (failure == EACCES && IsBeingMade(path));
        if (!passing || !patience.Wait()) {
            return file;
        }
    }
}

enum class Standing { kNamed, kRenamed, kForeign };

// What the name says of the file that was opened by it.
Standing StandingOf(int file, const ObjectPath& path) noexcept {
    struct stat status;
    struct stat named;
    if (::fstat(file, &status) != 0 || !S_ISREG(status.st_mode) || status.st_nlink > 1) {
        return Standing::kForeign;
    }
    return ::lstat(path.Text(), &named) == 0 && named.st_dev == status.st_dev &&
                   named.st_ino == status.st_ino
               ? Standing::kNamed
               : Standing::kRenamed;
}

// Growing beyond the process's limit would not only fail but be a signal.
bool IsBeyondLimit(u64 size) noexcept {
    rlimit limit;
    return ::getrlimit(RLIMIT_FSIZE, &limit) == 0 && size > limit.rlim_cur;
}

// In steps, since a signal undoes the one that it interrupts.
u32 Reserve(int file, u64 size) noexcept {
    constexpr u64 kStep = u64{1} << 20;
    if (IsBeyondLimit(size)) {
        return kErrorDiskFull;
    }
    for (u64 done = 0; done < size;) {
        const u64 step = std::min(kStep, size - done);
        if (::fallocate(file, 0, static_cast<off_t>(done), static_cast<off_t>(step)) == 0) {
            done += step;
        } else if (errno != EINTR) {
            return NativeErrorFromErrno(errno);
        }
    }
    return kErrorSuccess;
}

u32 Fill(int file, const NewObject& object) noexcept {
    ::fchmod(file, kOpenToAll);
    if (::ftruncate(file, 0) != 0) {
        return NativeErrorFromErrno(errno);
    }
    if (const u32 error = Reserve(file, object.m_size)) {
        return error;
    }
    const ssize_t written = ::pwrite(file, object.m_content, object.m_contentSize, 0);
    return written == static_cast<ssize_t>(object.m_contentSize) ? static_cast<u32>(kErrorSuccess)
                                                                 : kErrorDiskFull;
}

// Under the guard, of a file that nobody uses.
void Discard(int file, const ObjectPath& path) noexcept {
    if (::unlink(path.Text()) != 0) {
        // The result does not matter: what is left is a file that nobody uses.
        [[maybe_unused]] const int result = ::ftruncate(file, 0);
    }
}

u32 UseUnderGuard(const ObjectPath& path, const NewObject* fresh, OpenedObject* object) noexcept {
    const int file = object->m_file.Get();
    object->m_existed = IsUsed(file);
    u32 error = kErrorSuccess;
    if (!object->m_existed) {
        error = fresh != nullptr ? Fill(file, *fresh) : static_cast<u32>(kErrorFileNotFound);
        if (error != 0) {
            Discard(file, path);
            return error;
        }
    }
    const int failure = TryLock(file, kUse, F_RDLCK);
    return failure == 0 ? static_cast<u32>(kErrorSuccess) : ErrorOfLock(failure);
}

// An object whose size is 0 has been spoilt.
u32 LearnSize(OpenedObject* object) noexcept {
    struct stat status;
    if (::fstat(object->m_file.Get(), &status) != 0 || status.st_size <= 0) {
        return kErrorInvalidHandle;
    }
    object->m_size = static_cast<u64>(status.st_size);
    return kErrorSuccess;
}

// Steps 2 to 6. False if the name has gone on to another file.
bool EnterFile(const ObjectPath& path, const NewObject* fresh, Patience& patience,
               OpenedObject* object) noexcept {
    const int file = object->m_file.Get();
    object->m_error = LockGuard(file, patience);
    if (object->m_error != 0) {
        return true;
    }
    const Standing standing = StandingOf(file, path);
    if (standing == Standing::kNamed) {
        object->m_error = UseUnderGuard(path, fresh, object);
    }
    UnlockGuard(file);
    switch (standing) {
        case Standing::kNamed:
            object->m_error = object->m_error != 0 ? object->m_error : LearnSize(object);
            return true;
        case Standing::kForeign:
            object->m_error = kErrorInvalidHandle;
            return true;
        case Standing::kRenamed:
            object->m_error = kErrorBusy;
            return !patience.Wait();
    }
    return true;
}

}  // namespace

OpenedObject OpenNamedObject(const ObjectPath& path, const NewObject* fresh) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff stay;
    OpenedObject object;
    Patience patience;
    do {
        object.m_file = OpenFile(path, fresh != nullptr, patience, &object.m_error);
    } while (object.m_file && !EnterFile(path, fresh, patience, &object));
    if (object.m_error != 0) {
        object.m_file = OwnedDescriptor();
    }
    return object;
}

void RemoveUnusedObject(const ObjectPath& path) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff stay;
    const OwnedDescriptor file = OpenDescriptor(path.Text(), kFileFlags);
    if (!file || TryLock(file.Get(), kGuard, F_WRLCK) != 0) {
        return;
    }
    if (StandingOf(file.Get(), path) == Standing::kNamed && !IsUsed(file.Get())) {
        Discard(file.Get(), path);
    }
    UnlockGuard(file.Get());
}

}  // namespace platform

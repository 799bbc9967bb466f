// What is done with an open file, and with a name.
#include "platform/files.h"

#include <sys/stat.h>
#include <sys/syscall.h>

#include <algorithm>
#include <optional>

#include "../cancellation.h"
#include "../write_signals.h"
#include "file_error.h"
#include "file_object.h"
#include "file_path.h"

namespace platform {
namespace {

constexpr mode_t kWriteBits = 0222;

// What an operation keeps from the thread that calls it. Those of which there are many one after
// the other call nothing that cancels, and keep errno alone: the C library's read and write do, the
// system's own do not, and neither do seeking and the status of a descriptor.
struct Operation {
    const CancellationOff m_whole;
    const ErrnoKeeper m_keepErrno;
};

ssize_t Read(int file, char* to, std::size_t count) noexcept {
    return ::syscall(SYS_read, file, to, count);
}

ssize_t Write(int file, const char* from, std::size_t count) noexcept {
    return ::syscall(SYS_write, file, from, count);
}

// What is held while a pipe may be without a reader.
struct PipeWriting {
    const CancellationOff m_whole;
    const WriteSignalsHeld m_noSignals;
};

// The kernel moves at most about 2 GiB at once and says how much that was. Less is all that there
// is to read; of what is written to a pipe a signal may have kept the rest back.
enum class Less { kIsAll, kHasARest };

template <typename Byte, typename Move>
bool MoveAll(Byte* bytes, u32 count, u32* done, Less less, Move move) noexcept {
    constexpr ssize_t kKernelLimit = 0x7FFFF000;
    for (;;) {
        const ssize_t moved = move(bytes + *done, std::size_t{count - *done});
        if (moved < 0 && errno == EINTR) {
            continue;
        }
        if (moved < 0) {
            return *done != 0 || FailByErrno();
        }
        *done += static_cast<u32>(moved);
        const bool goesOn = less == Less::kHasARest || moved >= kKernelLimit;
        if (moved == 0 || *done == count || !goesOn) {
            return true;
        }
    }
}

bool MoveTo(const FileReference& file, off_t distance, int origin, u64* position) noexcept {
    const off_t reached = ::lseek(file->Descriptor(), distance, origin);
    if (reached < 0) {
        return errno == EINVAL ? FailWith(kErrorNegativeSeek) : FailByErrno();
    }
    *position = static_cast<u64>(reached);
    return true;
}

// The way back is known beforehand where the kernel does not tell it.
bool MoveIn32Bits(const FileReference& file, i32 distance, u32 origin, u64* position) noexcept {
    const off_t before = origin == SEEK_END ? ::lseek(file->Descriptor(), 0, SEEK_CUR) : 0;
    if (!MoveTo(file, distance, static_cast<int>(origin), position)) {
        return false;
    }
    if (*position > UINT32_MAX) {
        const off_t back =
            origin == SEEK_END ? before : static_cast<off_t>(*position) - off_t{distance};
        ::lseek(file->Descriptor(), back, SEEK_SET);
        return FailWith(kErrorInvalidParameter);
    }
    return true;
}

bool HasReadOnlyAttribute(const struct stat& status) noexcept {
    return S_ISREG(status.st_mode) && (status.st_mode & kWriteBits) == 0;
}

}  // namespace

bool ReadFile(HANDLE handle, void* buffer, u32 count, u32* done) noexcept {
    const ErrnoKeeper keepErrno;
    *done = 0;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    if (!file->MayRead()) {
        return FailWith(kErrorAccessDenied);
    }
    const bool read =
        MoveAll(static_cast<char*>(buffer), count, done, Less::kIsAll,
                [&](char* to, std::size_t n) { return Read(file->Descriptor(), to, n); });
    if (read && *done == 0 && count != 0 && file->IsPipe()) {
        return FailWith(kErrorBrokenPipe);
    }
    return read;
}

bool WriteFile(HANDLE handle, const void* buffer, u32 count, u32* done) noexcept {
    const ErrnoKeeper keepErrno;
    *done = 0;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    if (!file->MayWrite()) {
        return FailWith(kErrorAccessDenied);
    }
    std::optional<PipeWriting> held;
    if (file->IsPipe()) {
        held.emplace();
    }
    return MoveAll(
        static_cast<const char*>(buffer), count, done, Less::kHasARest,
        [&](const char* from, std::size_t n) { return Write(file->Descriptor(), from, n); });
}

u32 SetFilePointer(HANDLE handle, i32 distance, u32 origin) noexcept {
    const ErrnoKeeper keepErrno;
    const FileReference file(handle);
    u64 position;
    if (!file) {
        return kInvalidFilePointer;
    }
    if (origin > SEEK_END) {
        SetLastError(kErrorInvalidParameter);
        return kInvalidFilePointer;
    }
    if (!MoveIn32Bits(file, distance, origin, &position)) {
        return kInvalidFilePointer;
    }
    if (position == kInvalidFilePointer) {
        SetLastError(kErrorSuccess);
    }
    return static_cast<u32>(position);
}

bool SetFilePointerEx(HANDLE handle, i64 distance, u64* position, u32 origin) noexcept {
    const ErrnoKeeper keepErrno;
    *position = 0;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    return origin <= SEEK_END ? MoveTo(file, distance, static_cast<int>(origin), position)
                              : FailWith(kErrorInvalidParameter);
}

// A pipe has nothing to bring anywhere.
bool FlushFileBuffers(HANDLE handle) noexcept {
    const Operation operation;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    if (!file->MayWrite()) {
        return FailWith(kErrorAccessDenied);
    }
    int result;
    do {
        result = ::fsync(file->Descriptor());
    } while (result != 0 && errno == EINTR);
    return result == 0 || errno == EINVAL || FailByErrno();
}

bool GetFileSizeEx(HANDLE handle, u64* size) noexcept {
    const ErrnoKeeper keepErrno;
    *size = 0;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    struct stat status;
    if (::fstat(file->Descriptor(), &status) != 0) {
        return FailByErrno();
    }
    *size = static_cast<u64>(status.st_size);
    return true;
}

bool LockFileEx(HANDLE handle, u32 flags, u32 length, u32 offset) noexcept {
    const Operation operation;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    const u32 error =
        file->Locks().Lock(file->Descriptor(), offset, length, (flags & kLockExclusive) != 0,
                           (flags & kLockFailImmediately) == 0);
    return error == 0 || FailWith(error);
}

bool LockFile(HANDLE handle, u32 offset, u32 length) noexcept {
    return LockFileEx(handle, kLockExclusive | kLockFailImmediately, length, offset);
}

bool UnlockFileEx(HANDLE handle, u32 length, u32 offset) noexcept {
    const Operation operation;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    const u32 error = file->Locks().Unlock(offset, length);
    return error == 0 || FailWith(error);
}

bool UnlockFile(HANDLE handle, u32 offset, u32 length) noexcept {
    return UnlockFileEx(handle, length, offset);
}

// The administrator is refused what the attribute refuses others.
bool DeleteFileW(const char16_t* path) noexcept {
    const Operation operation;
    const FilePath narrow(path);
    if (!narrow.IsValid()) {
        return false;
    }
    struct stat status;
    if (::lstat(narrow.Text(), &status) != 0) {
        return FailByErrno();
    }
    if (S_ISDIR(status.st_mode) || HasReadOnlyAttribute(status)) {
        return FailWith(kErrorAccessDenied);
    }
    return ::unlink(narrow.Text()) == 0 || FailByErrno();
}

bool CreateDirectoryW(const char16_t* path) noexcept {
    const Operation operation;
    const FilePath narrow(path);
    if (!narrow.IsValid()) {
        return false;
    }
    if (::mkdir(narrow.Text(), 0777) == 0) {
        return true;
    }
    return errno == ENOENT ? FailWith(kErrorPathNotFound) : FailByErrno();
}

bool RemoveDirectoryW(const char16_t* path) noexcept {
    const Operation operation;
    const FilePath narrow(path);
    if (!narrow.IsValid()) {
        return false;
    }
    if (::rmdir(narrow.Text()) == 0) {
        return true;
    }
    switch (errno) {
        case ENOTDIR:
            return FailWith(kErrorDirectory);
        case EEXIST:
            return FailWith(kErrorDirectoryNotEmpty);
        default:
            return FailByErrno();
    }
}

}  // namespace platform

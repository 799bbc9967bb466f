#include <qxcore/file.h>

#include "core/core_init.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/handles.h"

namespace {

QXResult ResultOf(bool success) {
    return success ? QX_S_OK : QXResultFromNative(platform::GetLastError());
}

// The two low bits of the flags ask for what the platform's ask to do without.
u32 LockFlags(u32 flags) {
    return ((flags & QX_FILE_LOCK_SHARED) != 0 ? 0u : platform::kLockExclusive) |
           ((flags & QX_FILE_LOCK_WAIT) != 0 ? 0u : platform::kLockFailImmediately);
}

}  // namespace

QXResult QXFileClose(QXHandle file) {
    return ResultOf(platform::CloseHandle(file));
}

QXResult QXFileRead(QXHandle file, void* buffer, uint32_t count, uint32_t* done) {
    if (!platform::ReadFile(file, buffer, count, done)) {
        return QXResultFromNative(platform::GetLastError());
    }
    return *done != 0 ? QX_S_OK : QX_E_EOF;
}

QXResult QXFileWrite(QXHandle file, const void* buffer, uint32_t count, uint32_t* done) {
    return ResultOf(platform::WriteFile(file, buffer, count, done));
}

QXResult QXFileSeek(QXHandle file, int32_t offset, uint32_t origin, uint32_t* position) {
    *position = platform::SetFilePointer(file, offset, origin);
    return ResultOf(*position != platform::kInvalidFilePointer);
}

QXResult QXFileSeek64(QXHandle file, int64_t offset, uint32_t origin, uint64_t* position) {
    return ResultOf(platform::SetFilePointerEx(file, offset, position, origin));
}

QXResult QXFileFlush(QXHandle file) {
    return ResultOf(platform::FlushFileBuffers(file));
}

QXResult QXFileGetSize(QXHandle file, uint64_t* size) {
    if (s_isWinNT == 0) {
        return QX_E_NOTIMPL;
    }
    return ResultOf(platform::GetFileSizeEx(file, size));
}

QXResult QXFileLock(QXHandle file, uint32_t offset, uint32_t length, uint32_t flags) {
    return ResultOf(s_isWinNT != 0 ? platform::LockFileEx(file, LockFlags(flags), length, offset)
                                   : platform::LockFile(file, offset, length));
}

QXResult QXFileUnlock(QXHandle file, uint32_t offset, uint32_t length) {
    return ResultOf(s_isWinNT != 0 ? platform::UnlockFileEx(file, length, offset)
                                   : platform::UnlockFile(file, offset, length));
}

QXResult QXFileDelete(const wchar* path) {
    return ResultOf(platform::DeleteFileW(path));
}

QXResult QXDirCreate(const wchar* path, uint32_t) {
    return ResultOf(platform::CreateDirectoryW(path));
}

QXResult QXDirRemove(const wchar* path) {
    return ResultOf(platform::RemoveDirectoryW(path));
}

// A buffer that is too small is no failure, and stays unfilled.
QXResult QXPathExpand(const wchar* path, wchar* buffer, uint32_t capacity) {
    return ResultOf(platform::GetFullPathNameW(path, capacity, buffer) != 0);
}

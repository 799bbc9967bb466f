// The numbers of failing file operations.
#ifndef QX_PLATFORM_POSIX_FILES_FILE_ERROR_H
#define QX_PLATFORM_POSIX_FILES_FILE_ERROR_H

#include <cerrno>

#include "platform/errors.h"

namespace platform {

// Beside what every operation has.
inline u32 FileErrorFromErrno(int error) noexcept {
    switch (error) {
        case EISDIR:
        case ETXTBSY:
            return kErrorAccessDenied;
        case EMFILE:
        case ENFILE:
            return kErrorTooManyOpenFiles;
        case ENAMETOOLONG:
            return kErrorFilenameExceedsRange;
        case ENOTEMPTY:
            return kErrorDirectoryNotEmpty;
        case EPIPE:
            return kErrorNoData;
        case EFBIG:
            return kErrorDiskFull;
        default:
            return NativeErrorFromErrno(error);
    }
}

// Sets the last error from errno, which is read first.
inline bool FailByErrno() noexcept {
    SetLastError(FileErrorFromErrno(errno));
    return false;
}

inline bool FailWith(u32 error) noexcept {
    SetLastError(error);
    return false;
}

}  // namespace platform

#endif

#include "platform/errors.h"

namespace platform {

constinit thread_local std::uint32_t t_lastError = 0;

u32 NativeErrorFromErrno(int error) noexcept {
    switch (error) {
        case 0:
            return kErrorSuccess;
        case ENOENT:
            return kErrorFileNotFound;
        case ENOTDIR:
            return kErrorPathNotFound;
        case EACCES:
        case EPERM:
        case EROFS:
            return kErrorAccessDenied;
        case EBADF:
            return kErrorInvalidHandle;
        case ENOMEM:
            return kErrorOutOfMemory;
        case EEXIST:
            return kErrorAlreadyExists;
        case ENOSPC:
        case EDQUOT:
            return kErrorDiskFull;
        default:
            return kErrorInvalidFunction;
    }
}

}  // namespace platform

// The last error of each thread, and the reference platform's error numbers.
#ifndef QX_PLATFORM_ERRORS_H
#define QX_PLATFORM_ERRORS_H

#include <last_error_native.h>

#include "platform/types.h"

namespace platform {

enum NativeError : u32 {
    kErrorSuccess = 0,
    kErrorInvalidFunction = 1,
    kErrorFileNotFound = 2,
    kErrorPathNotFound = 3,
    kErrorTooManyOpenFiles = 4,
    kErrorAccessDenied = 5,
    kErrorInvalidHandle = 6,
    kErrorOutOfMemory = 14,
    kErrorNoMoreFiles = 18,
    kErrorSharingViolation = 32,
    kErrorLockViolation = 33,
    kErrorFileExists = 80,
    kErrorInvalidParameter = 87,
    kErrorBrokenPipe = 109,
    kErrorDiskFull = 112,
    kErrorInsufficientBuffer = 122,
    kErrorInvalidName = 123,
    kErrorModuleNotFound = 126,
    kErrorProcedureNotFound = 127,
    kErrorNegativeSeek = 131,
    kErrorDirectoryNotEmpty = 145,
    kErrorNotLocked = 158,
    kErrorBusy = 170,
    kErrorAlreadyExists = 183,
    kErrorBadExeFormat = 193,
    kErrorFilenameExceedsRange = 206,
    kErrorNameTooLong = 206,
    kErrorNoData = 232,
    kErrorMoreData = 234,
    kErrorWaitTimeout = 258,
    kErrorNoMoreItems = 259,
    kErrorDirectory = 267,
    kErrorTooManyPosts = 298,
    kErrorInvalidAddress = 487,
    kErrorBadDatabase = 1009,
    kErrorRegistryIoFailed = 1016,
    kErrorKeyDeleted = 1018,
    kErrorUnknownRevision = 1305,
    kErrorAllottedSpaceExceeded = 1344,
    kErrorNoSystemResources = 1450,
    kErrorTimeout = 1460,
    kErrorUuidNoAddress = 1739,
};

// The number of the calling thread's last failing operation. An operation that succeeds leaves
// it alone unless its contract says otherwise. Neither call blocks.
u32 GetLastError() noexcept;
void SetLastError(u32 error) noexcept;

}  // namespace platform

#endif

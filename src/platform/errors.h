// The last error of each thread, and the reference platform's error numbers.
#ifndef QX_PLATFORM_ERRORS_H
#define QX_PLATFORM_ERRORS_H

#include <last_error_native.h>

#include "platform/types.h"

namespace platform {

enum NativeError : u32 {
    kErrorSuccess = 0,                   // ERROR_SUCCESS
    kErrorInvalidFunction = 1,           // ERROR_INVALID_FUNCTION
    kErrorFileNotFound = 2,              // ERROR_FILE_NOT_FOUND
    kErrorPathNotFound = 3,              // ERROR_PATH_NOT_FOUND
    kErrorTooManyOpenFiles = 4,          // ERROR_TOO_MANY_OPEN_FILES
    kErrorAccessDenied = 5,              // ERROR_ACCESS_DENIED
    kErrorInvalidHandle = 6,             // ERROR_INVALID_HANDLE
    kErrorOutOfMemory = 14,              // ERROR_OUTOFMEMORY
    kErrorNoMoreFiles = 18,              // ERROR_NO_MORE_FILES
    kErrorSharingViolation = 32,         // ERROR_SHARING_VIOLATION
    kErrorLockViolation = 33,            // ERROR_LOCK_VIOLATION
    kErrorFileExists = 80,               // ERROR_FILE_EXISTS
    kErrorInvalidParameter = 87,         // ERROR_INVALID_PARAMETER
    kErrorBrokenPipe = 109,              // ERROR_BROKEN_PIPE
    kErrorDiskFull = 112,                // ERROR_DISK_FULL
    kErrorInsufficientBuffer = 122,      // ERROR_INSUFFICIENT_BUFFER
    kErrorInvalidName = 123,             // ERROR_INVALID_NAME
    kErrorModuleNotFound = 126,          // ERROR_MOD_NOT_FOUND
    kErrorProcedureNotFound = 127,       // ERROR_PROC_NOT_FOUND
    kErrorNegativeSeek = 131,            // ERROR_NEGATIVE_SEEK
    kErrorDirectoryNotEmpty = 145,       // ERROR_DIR_NOT_EMPTY
    kErrorNotLocked = 158,               // ERROR_NOT_LOCKED
    kErrorBusy = 170,                    // ERROR_BUSY
    kErrorAlreadyExists = 183,           // ERROR_ALREADY_EXISTS
    kErrorBadExeFormat = 193,            // ERROR_BAD_EXE_FORMAT
    kErrorFilenameExceedsRange = 206,    // ERROR_FILENAME_EXCED_RANGE
    kErrorNoData = 232,                  // ERROR_NO_DATA
    kErrorMoreData = 234,                // ERROR_MORE_DATA
    kErrorWaitTimeout = 258,             // WAIT_TIMEOUT
    kErrorNoMoreItems = 259,             // ERROR_NO_MORE_ITEMS
    kErrorDirectory = 267,               // ERROR_DIRECTORY
    kErrorTooManyPosts = 298,            // ERROR_TOO_MANY_POSTS
    kErrorInvalidAddress = 487,          // ERROR_INVALID_ADDRESS
    kErrorBadDatabase = 1009,            // ERROR_BADDB
    kErrorRegistryIoFailed = 1016,       // ERROR_REGISTRY_IO_FAILED
    kErrorKeyDeleted = 1018,             // ERROR_KEY_DELETED
    kErrorUnknownRevision = 1305,        // ERROR_UNKNOWN_REVISION
    kErrorAllottedSpaceExceeded = 1344,  // ERROR_ALLOTTED_SPACE_EXCEEDED
    kErrorNoSystemResources = 1450,      // ERROR_NO_SYSTEM_RESOURCES
    kErrorTimeout = 1460,                // ERROR_TIMEOUT
    kErrorUuidNoAddress = 1739,          // RPC_S_UUID_NO_ADDRESS
};

// The number of the calling thread's last failing operation. An operation that succeeds leaves
// it alone unless its contract says otherwise. Neither call blocks.
u32 GetLastError() noexcept;
void SetLastError(u32 error) noexcept;

}  // namespace platform

#endif

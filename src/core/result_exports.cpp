#include <qxcore/result.h>

#include "platform/errors.h"

QXResult QXResultFromNative(uint32_t nativeCode) {
    switch (nativeCode) {
        case platform::kErrorSuccess:
            return QX_S_OK;
        case platform::kErrorFileNotFound:
        case platform::kErrorPathNotFound:
            return QX_E_NOTFOUND;
        case platform::kErrorAccessDenied:
        case platform::kErrorSharingViolation:
            return QX_E_ACCESSDENIED;
        case platform::kErrorInvalidHandle:
            return QX_E_HANDLE;
        case platform::kErrorOutOfMemory:
            return QX_E_OUTOFMEMORY;
        case platform::kErrorAlreadyExists:
            return QX_E_ALREADYEXISTS;
        case platform::kErrorWaitTimeout:
            return QX_E_TIMEOUT;
        default:
            return QX_E_FAIL;
    }
}

#ifndef QX_PLATFORM_WINDOWS_LAST_ERROR_NATIVE_H
#define QX_PLATFORM_WINDOWS_LAST_ERROR_NATIVE_H

#include "system_headers.h"

namespace platform {

inline u32 GetLastError() noexcept {
    return ::GetLastError();
}

inline void SetLastError(u32 error) noexcept {
    ::SetLastError(error);
}

}  // namespace platform

#endif

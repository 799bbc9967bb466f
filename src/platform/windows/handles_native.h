#ifndef QX_PLATFORM_WINDOWS_HANDLES_NATIVE_H
#define QX_PLATFORM_WINDOWS_HANDLES_NATIVE_H

#include "system_headers.h"

namespace platform {

inline u32 WaitForSingleObject(HANDLE handle, u32 milliseconds) noexcept {
    return ::WaitForSingleObject(handle, milliseconds);
}

inline bool CloseHandle(HANDLE handle) noexcept {
    return ::CloseHandle(handle) != 0;
}

}  // namespace platform

#endif

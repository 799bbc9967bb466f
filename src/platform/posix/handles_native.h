// A handle is the address of an Object.
#ifndef QX_PLATFORM_POSIX_HANDLES_NATIVE_H
#define QX_PLATFORM_POSIX_HANDLES_NATIVE_H

#include "waiting/object.h"

namespace platform {

using HANDLE = void*;

inline u32 WaitForSingleObject(HANDLE handle, u32 milliseconds) noexcept {
    return static_cast<Object*>(handle)->Wait(milliseconds);
}

inline bool CloseHandle(HANDLE handle) noexcept {
    delete static_cast<Object*>(handle);
    return true;
}

}  // namespace platform

#endif

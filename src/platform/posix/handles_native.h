// A handle is the address of an Object, or an odd number: see checked_handles.h.
#ifndef QX_PLATFORM_POSIX_HANDLES_NATIVE_H
#define QX_PLATFORM_POSIX_HANDLES_NATIVE_H

#include "checked_handles.h"
#include "waiting/signalled_object.h"

namespace platform {

using HANDLE = void*;

inline u32 WaitForSingleObject(HANDLE handle, u32 milliseconds) noexcept {
    if (IsCheckedHandle(handle)) [[unlikely]] {
        return WaitForCheckedHandle(handle, milliseconds);
    }
    auto* const object = static_cast<SignalledObject*>(static_cast<Object*>(handle));
    return object->TryTake() ? kWaitObject0 : object->Wait(milliseconds);
}

inline bool CloseHandle(HANDLE handle) noexcept {
    if (IsCheckedHandle(handle)) {
        return CloseCheckedHandle(handle);
    }
    delete static_cast<Object*>(handle);
    return true;
}

}  // namespace platform

#endif

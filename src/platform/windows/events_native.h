#ifndef QX_PLATFORM_WINDOWS_EVENTS_NATIVE_H
#define QX_PLATFORM_WINDOWS_EVENTS_NATIVE_H

#include "security_native.h"
#include "system_headers.h"

namespace platform {

inline HANDLE CreateEventA(const SECURITY_ATTRIBUTES* attributes, bool manualReset,
                           bool initialState, const char* name) noexcept {
    return ::CreateEventA(const_cast<SECURITY_ATTRIBUTES*>(attributes), manualReset, initialState,
                          name);
}

inline bool SetEvent(HANDLE event) noexcept {
    return ::SetEvent(event) != 0;
}

inline bool ResetEvent(HANDLE event) noexcept {
    return ::ResetEvent(event) != 0;
}

inline HANDLE CreateSemaphoreA(const SECURITY_ATTRIBUTES* attributes, i32 initialCount,
                               i32 maximumCount, const char* name) noexcept {
    return ::CreateSemaphoreA(const_cast<SECURITY_ATTRIBUTES*>(attributes), initialCount,
                              maximumCount, name);
}

inline bool ReleaseSemaphore(HANDLE semaphore, i32 count, i32* previous) noexcept {
    static_assert(sizeof(LONG) == sizeof(i32));
    return ::ReleaseSemaphore(semaphore, count, reinterpret_cast<LONG*>(previous)) != 0;
}

}  // namespace platform

#endif

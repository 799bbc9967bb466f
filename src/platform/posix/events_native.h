#ifndef QX_PLATFORM_POSIX_EVENTS_NATIVE_H
#define QX_PLATFORM_POSIX_EVENTS_NATIVE_H

#include "handles_native.h"
#include "platform/errors.h"
#include "waiting/event.h"

namespace platform {

inline bool SetEvent(HANDLE event) noexcept {
    static_cast<Event*>(static_cast<Object*>(event))->Set();
    return true;
}

inline bool ResetEvent(HANDLE event) noexcept {
    static_cast<Event*>(static_cast<Object*>(event))->Reset();
    return true;
}

inline bool ReleaseSemaphore(HANDLE semaphore, i32, i32*) noexcept {
    if (!static_cast<Semaphore*>(static_cast<Object*>(semaphore))->Release()) [[unlikely]] {
        SetLastError(kErrorTooManyPosts);
        return false;
    }
    return true;
}

}  // namespace platform

#endif

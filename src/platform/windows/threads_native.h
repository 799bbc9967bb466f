#ifndef QX_PLATFORM_WINDOWS_THREADS_NATIVE_H
#define QX_PLATFORM_WINDOWS_THREADS_NATIVE_H

#include "system_headers.h"

namespace platform {

inline u32 GetCurrentThreadId() noexcept {
    return ::GetCurrentThreadId();
}

inline u32 GetKnownThreadId() noexcept {
    return ::GetCurrentThreadId();
}

inline HANDLE GetCurrentThread() noexcept {
    return ::GetCurrentThread();
}

inline void Sleep(u32 milliseconds) noexcept {
    ::Sleep(milliseconds);
}

inline void DebugBreak() noexcept {
    ::DebugBreak();
}

}  // namespace platform

#endif

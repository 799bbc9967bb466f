#ifndef QX_PLATFORM_WINDOWS_THREADS_NATIVE_H
#define QX_PLATFORM_WINDOWS_THREADS_NATIVE_H

#include <process.h>

#include "system_headers.h"

#define QX_THREAD_CALL __stdcall

namespace platform {

using ThreadResult = unsigned;
using ThreadEntry = ThreadResult(QX_THREAD_CALL*)(void* argument);

inline u32 GetCurrentThreadId() noexcept {
    return ::GetCurrentThreadId();
}

inline u32 GetKnownThreadId() noexcept {
    return ::GetCurrentThreadId();
}

inline HANDLE GetCurrentThread() noexcept {
    return ::GetCurrentThread();
}

inline std::uintptr_t _beginthreadex(void* security, u32 stackSize, ThreadEntry entry,
                                     void* argument, u32 flags, u32* id) noexcept {
    return ::_beginthreadex(security, stackSize, entry, argument, flags, id);
}

inline bool GetExitCodeThread(HANDLE thread, u32* code) noexcept {
    return ::GetExitCodeThread(thread, Native(code)) != 0;
}

inline bool SwitchToThread() noexcept {
    return ::SwitchToThread() != 0;
}

inline u64 SetThreadAffinityMask(HANDLE thread, u64 mask) noexcept {
    return ::SetThreadAffinityMask(thread, mask);
}

inline void Sleep(u32 milliseconds) noexcept {
    ::Sleep(milliseconds);
}

inline void DebugBreak() noexcept {
    __debugbreak();
}

}  // namespace platform

#endif

// The thread id is asked of the kernel once a thread and kept in the thread's storage. A forked
// child asks again.
#ifndef QX_PLATFORM_POSIX_THREADS_NATIVE_H
#define QX_PLATFORM_POSIX_THREADS_NATIVE_H

#include <signal.h>

#include <cstdint>

#include "handles_native.h"

#define QX_THREAD_CALL

namespace platform {

using ThreadResult = std::uint32_t;
using ThreadEntry = ThreadResult (*)(void* argument);

extern constinit thread_local std::uint32_t t_threadId
    [[gnu::tls_model("initial-exec"), gnu::visibility("hidden")]];

// Asks the kernel and keeps the answer.
std::uint32_t LearnThreadId() noexcept;

inline std::uint32_t GetCurrentThreadId() noexcept {
    const std::uint32_t known = t_threadId;
    return known != 0 ? known : LearnThreadId();
}

inline std::uint32_t GetKnownThreadId() noexcept {
    return t_threadId;
}

inline HANDLE GetCurrentThread() noexcept {
    return kCurrentThread;
}

[[gnu::always_inline]] inline void DebugBreak() noexcept {
#if defined(__x86_64__) || defined(__i386__)
    asm volatile("int3");
#else
    // Elsewhere a trap instruction leaves the program counter on itself, so that a handler that
    // goes on comes back for ever.
    ::raise(SIGTRAP);
#endif
}

}  // namespace platform

#endif

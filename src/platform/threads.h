// Threads.
#ifndef QX_PLATFORM_THREADS_H
#define QX_PLATFORM_THREADS_H

#include <threads_native.h>

#include "platform/types.h"

namespace platform {

// The system's number of the calling thread, as debuggers show it. Never 0. No system call after
// the thread's first.
u32 GetCurrentThreadId() noexcept;

// A pseudo handle that stands for whichever thread uses it.
HANDLE GetCurrentThread() noexcept;

// Blocks for `milliseconds`, whatever signals are handled meanwhile; all ones blocks for ever, 0
// yields.
void Sleep(u32 milliseconds) noexcept;

// Stops in the debugger; the thread can go on behind it.
void DebugBreak() noexcept;

}  // namespace platform

#endif

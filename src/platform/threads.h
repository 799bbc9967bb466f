// Threads.
#ifndef QX_PLATFORM_THREADS_H
#define QX_PLATFORM_THREADS_H

#include <threads_native.h>

#include "platform/types.h"

namespace platform {

// The system's number of the calling thread, as debuggers show it. Never 0. No system call after
// the thread's first.
u32 GetCurrentThreadId() noexcept;

// The same, but 0 for a thread that has not asked for its number yet: never a call of any kind, for
// code that has to do without.
u32 GetKnownThreadId() noexcept;

// A pseudo handle that stands for whichever thread uses it.
HANDLE GetCurrentThread() noexcept;

// Blocks for `milliseconds`, whatever signals are handled meanwhile; all ones blocks for ever, 0
// yields.
void Sleep(u32 milliseconds) noexcept;

// Stops in the debugger; the thread can go on behind it.
void DebugBreak() noexcept;

}  // namespace platform

#endif

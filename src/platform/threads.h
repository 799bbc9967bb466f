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

// A pseudo handle that stands for whichever thread uses it. To wait for it never ends, to close it
// does nothing.
HANDLE GetCurrentThread() noexcept;

// Starts a thread, whose exit code is what `entry` returns. The back end defines ThreadEntry.
// `security` is null, `flags` 0. `stackSize` is in bytes, 0 for the system's default; it is rounded
// up. `entry` does not return before this function has. Returns a handle and the thread's number,
// or 0 with the last error 14 or 1450. Does not block.
std::uintptr_t _beginthreadex(void* security, u32 stackSize, ThreadEntry entry, void* argument,
                              u32 flags, u32* id) noexcept;

// Of a thread that has ended. False with 6.
bool GetExitCodeThread(HANDLE thread, u32* code) noexcept;

// Lets another thread run. False if there was none.
bool SwitchToThread() noexcept;

// `thread` is GetCurrentThread(). Returns the mask until now; 0 with 87 for an empty mask and for
// one with a processor that the process may not use, which changes nothing.
u64 SetThreadAffinityMask(HANDLE thread, u64 mask) noexcept;

// Blocks for `milliseconds`, whatever signals are handled meanwhile; all ones blocks for ever, 0
// yields.
void Sleep(u32 milliseconds) noexcept;

// Stops in the debugger, in the frame of the function that calls this; the thread can go on behind
// it.
void DebugBreak() noexcept;

}  // namespace platform

#endif

// What every handle of the platform can do.
#ifndef QX_PLATFORM_HANDLES_H
#define QX_PLATFORM_HANDLES_H

#include <handles_native.h>

#include "platform/types.h"
#include "platform/waits.h"

namespace platform {

// The back end defines HANDLE, pointer-sized. Handles of events and semaphores are not checked: one
// that is closed, or is of another kind than an operation takes, is a fault of the caller. Handles
// of threads and mappings are: no operation takes one that is closed, and its error is 6.

// Waits for an event or a semaphore for up to `milliseconds`, all ones for ever. 0 polls and does
// not block. A wait for an auto-reset event or a semaphore takes the signal.
u32 WaitForSingleObject(HANDLE handle, u32 milliseconds) noexcept;

// Gives a handle up. Nobody may be inside an operation on it, but for an operation that released
// the caller from a wait. False with the reason in the last error. Does not block.
bool CloseHandle(HANDLE handle) noexcept;

}  // namespace platform

#endif

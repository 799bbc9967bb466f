// Events and semaphores.
#ifndef QX_PLATFORM_EVENTS_H
#define QX_PLATFORM_EVENTS_H

#include <events_native.h>

#include "platform/handles.h"
#include "platform/security.h"
#include "platform/types.h"

namespace platform {

// None of these blocks. What wakes somebody also orders: all that was done before the signal is
// seen behind the wait that it ends. A signal given while threads wait belongs to one of them, the
// one that has waited longest, and to no wait that begins later.

// An event: no signal at first, `initialState` is false. `attributes` and `name` are null.
// A manual-reset event stays signalled until it is reset; another one until a wait takes the
// signal. Null on failure: 14.
HANDLE CreateEventA(const SECURITY_ATTRIBUTES* attributes, bool manualReset, bool initialState,
                    const char* name) noexcept;

// Releases all who wait for a manual-reset event, or one who waits for another one; if nobody does,
// the signal stays.
bool SetEvent(HANDLE event) noexcept;

bool ResetEvent(HANDLE event) noexcept;

// A semaphore of the process's own, `attributes` and `name` being null, or the one that all
// processes share by that name, which the caller uses until he closes the handle; if it was there,
// `initialCount` has no effect. `maximumCount` is 32767. The wait for a named one has no time-out
// but 0. Null on failure: 14, and 87 for a count that is negative or above the maximum; with a name
// also 5, 6 if the name stands for something else, 112 or 1450 if there is no space. With a name it
// may block while others open the same semaphore.
HANDLE CreateSemaphoreA(const SECURITY_ATTRIBUTES* attributes, i32 initialCount, i32 maximumCount,
                        const char* name) noexcept;

// Releases one who waits, or else adds 1 to the count. `count` is 1, `previous` null. False with
// 298 at the maximum.
bool ReleaseSemaphore(HANDLE semaphore, i32 count, i32* previous) noexcept;

}  // namespace platform

#endif

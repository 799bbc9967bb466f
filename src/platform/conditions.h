// Condition variables that are bound to a critical section.
#ifndef QX_PLATFORM_CONDITIONS_H
#define QX_PLATFORM_CONDITIONS_H

#include <conditions_native.h>

#include "platform/sync.h"
#include "platform/types.h"

namespace platform {

// The back end defines CONDITION_VARIABLE. It has nothing to be freed.

void InitializeConditionVariable(CONDITION_VARIABLE* condition) noexcept;

// Releases one thread that sleeps; no effect if none does. Does not block.
void WakeConditionVariable(CONDITION_VARIABLE* condition) noexcept;

// Releases all threads that sleep.
void WakeAllConditionVariable(CONDITION_VARIABLE* condition) noexcept;

// Leaves the section once, sleeps for up to `milliseconds`, all ones for ever, and enters the
// section again, which blocks too. False with the last error 1460 if the time ran out. May return
// true for no reason. A wake-up after the section was left is not missed.
bool SleepConditionVariableCS(CONDITION_VARIABLE* condition, CRITICAL_SECTION* section,
                              u32 milliseconds) noexcept;

}  // namespace platform

#endif

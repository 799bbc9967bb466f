// Locks.
#ifndef QX_PLATFORM_SYNC_H
#define QX_PLATFORM_SYNC_H

#include <critical_section_native.h>

#include "platform/types.h"

namespace platform {

// A recursive lock. The back end defines CRITICAL_SECTION; its address is what clients of the
// exported interface get as "the platform's mutex", so it never moves.
//
// No operation fails and none sets the last error. Leaving a lock that the caller does not hold is
// neither refused nor reported.

void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept;

// `spinCount` is for how many turns Enter goes on looking before it blocks.
void InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section, u32 spinCount) noexcept;

void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept;

// Blocks while another thread holds the lock.
void EnterCriticalSection(CRITICAL_SECTION* section) noexcept;

// True if the calling thread now holds the lock. Does not block.
bool TryEnterCriticalSection(CRITICAL_SECTION* section) noexcept;

// Does not block. The section's memory is not touched once another thread can have entered.
void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept;

// How many calls of Enter had to block since the start or the last reset. Wraps. Any thread may ask
// and reset at any time; 0 where the system keeps no such count.
u32 ContentionCount(const CRITICAL_SECTION* section) noexcept;
void ResetContentionCount(CRITICAL_SECTION* section) noexcept;

}  // namespace platform

#endif

#include <algorithm>

#include "futex.h"
#include "platform/sync.h"
#include "processor_pause.h"

namespace platform {

constinit thread_local char t_threadMark = 0;

namespace {

// A few microseconds: less than it takes to wake a thread.
constexpr u32 kMostPauses = 64;

// The spin count is one of pauses. A look takes the lock's cache line away from its holder, so the
// looks become rarer.
bool SpinForLock(CRITICAL_SECTION* section) noexcept {
    u32 pauses = 1;
    for (u32 turn = 0; turn < section->m_spinCount;
         turn += pauses, pauses = std::min(2 * pauses, kMostPauses)) {
        if (section->m_state.load(std::memory_order_relaxed) == 0 &&
            detail::TakeFreeLock(section->m_state)) {
            return true;
        }
        for (u32 pause = 0; pause < pauses; ++pause) {
            PauseProcessor();
        }
    }
    return false;
}

}  // namespace

[[gnu::cold]] void EnterContendedCriticalSection(CRITICAL_SECTION* section) noexcept {
    if (!SpinForLock(section)) {
        section->m_contentionCount.fetch_add(1, std::memory_order_relaxed);
        // Whoever has slept takes the lock as 2: it cannot know whether it slept alone.
        while (section->m_state.exchange(2, std::memory_order_acquire) != 0) {
            FutexWait(&section->m_state, 2);
        }
    }
    section->m_owner.store(&t_threadMark, std::memory_order_relaxed);
}

[[gnu::cold]] void WakeCriticalSectionWaiter(CRITICAL_SECTION* section) noexcept {
    FutexWake(&section->m_state, 1);
}

}  // namespace platform

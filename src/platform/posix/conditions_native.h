// A condition variable is a queue of waiters without a count: see the page in wait_queue.h. Whoever
// wakes them need not hold the section. It has changed what they wait for, and that under the
// section; so it knows of all who joined the queue before that, and relaxed order is enough to see
// that nobody waits.
#ifndef QX_PLATFORM_POSIX_CONDITIONS_NATIVE_H
#define QX_PLATFORM_POSIX_CONDITIONS_NATIVE_H

#include <new>

#include "waiting/wait_queue.h"

namespace platform {

struct CONDITION_VARIABLE {
    WaitQueue m_queue;
};

inline void InitializeConditionVariable(CONDITION_VARIABLE* condition) noexcept {
    new (condition) CONDITION_VARIABLE();
}

inline void WakeConditionVariable(CONDITION_VARIABLE* condition) noexcept {
    if (condition->m_queue.MayHaveWaiters()) [[unlikely]] {
        condition->m_queue.GrantOne();
    }
}

inline void WakeAllConditionVariable(CONDITION_VARIABLE* condition) noexcept {
    if (condition->m_queue.MayHaveWaiters()) [[unlikely]] {
        condition->m_queue.GrantAll(0);
    }
}

}  // namespace platform

#endif

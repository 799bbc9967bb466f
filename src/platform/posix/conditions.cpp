#include "platform/conditions.h"

#include "platform/errors.h"

namespace platform {

bool SleepConditionVariableCS(CONDITION_VARIABLE* condition, CRITICAL_SECTION* section,
                              u32 milliseconds) noexcept {
    const Deadline deadline(milliseconds);
    Waiter self;
    condition->m_queue.Join(&self, 0);
    LeaveCriticalSection(section);
    const bool woken = condition->m_queue.Await(&self, deadline);
    EnterCriticalSection(section);
    if (!woken) {
        SetLastError(kErrorTimeout);
    }
    return woken;
}

}  // namespace platform

#include <qxcore/condition.h>

#include <string>

#include "core/entry_guard.h"
#include "platform/conditions.h"
#include "sync/waiting_object.h"

namespace {

struct CQXConditionImpl {
    CQXConditionImpl(const char* name, u32 flags)
        : m_name(name != nullptr ? name : ""), m_flags(flags) {
        platform::InitializeCriticalSection(&m_lock);
        platform::InitializeConditionVariable(&m_conditionVariable);
    }
    ~CQXConditionImpl() { platform::DeleteCriticalSection(&m_lock); }
    CQXConditionImpl(const CQXConditionImpl&) = delete;
    CQXConditionImpl& operator=(const CQXConditionImpl&) = delete;

    bool Sleep(u32 milliseconds) noexcept {
        return platform::SleepConditionVariableCS(&m_conditionVariable, &m_lock, milliseconds);
    }

    const std::string m_name;
    const u32 m_flags;
    platform::CRITICAL_SECTION m_lock;
    platform::CONDITION_VARIABLE m_conditionVariable;
};

CQXConditionImpl* ConditionOf(QXHandle handle) {
    return static_cast<CQXConditionImpl*>(handle);
}

}  // namespace

QXResult QXConditionCreate(const char* name, uint32_t flags, QXHandle* out) {
    *out = QX_INVALID_HANDLE;
    return RunGuarded([&] {
        *out = new CQXConditionImpl(name, flags);
        return QX_S_OK;
    });
}

QXResult QXConditionDestroy(QXHandle condition) {
    delete ConditionOf(condition);
    return QX_S_OK;
}

QXResult QXConditionAcquire(QXHandle condition) {
    return RunGuarded([&] {
        platform::EnterCriticalSection(&ConditionOf(condition)->m_lock);
        return QX_S_OK;
    });
}

QXResult QXConditionRelease(QXHandle condition) {
    return RunGuarded([&] {
        platform::LeaveCriticalSection(&ConditionOf(condition)->m_lock);
        return QX_S_OK;
    });
}

QXResult QXConditionSignal(QXHandle condition) {
    return RunGuarded([&] {
        platform::WakeConditionVariable(&ConditionOf(condition)->m_conditionVariable);
        return QX_S_OK;
    });
}

QXResult QXConditionBroadcast(QXHandle condition) {
    return RunGuarded([&] {
        platform::WakeAllConditionVariable(&ConditionOf(condition)->m_conditionVariable);
        return QX_S_OK;
    });
}

QXResult QXConditionWait(QXHandle condition) {
    return RunGuarded([&] { return ResultOf(ConditionOf(condition)->Sleep(platform::kInfinite)); });
}

// The mapping does not know 1460.
QXResult QXConditionTimedWait(QXHandle condition, uint32_t ms) {
    return RunGuarded([&] {
        const bool woken = ConditionOf(condition)->Sleep(ms);
        return !woken && platform::GetLastError() == platform::kErrorTimeout ? QX_E_TIMEOUT
                                                                             : ResultOf(woken);
    });
}

#include "component/module_manager.h"

#include "sync/mutex_holder.h"

namespace {

std::uintptr_t KeyOf(QXModuleToken token) {
    return reinterpret_cast<std::uintptr_t>(token);
}

}  // namespace

void CQXModuleManager::Mark(QXModuleToken token) {
    MutexHolder hold(m_setLock);
    m_moduleSet.insert(KeyOf(token));
}

void CQXModuleManager::Unmark(QXModuleToken token) {
    MutexHolder hold(m_setLock);
    m_moduleSet.erase(KeyOf(token));
}

void CQXModuleManager::EnterForFork() {
    if (m_setLock != QX_INVALID_HANDLE) {
        QXMutexAcquire(m_setLock);
    }
}

void CQXModuleManager::LeaveAfterFork() {
    if (m_setLock != QX_INVALID_HANDLE) {
        QXMutexRelease(m_setLock);
    }
}

bool CQXModuleManager::IsMarked(QXModuleToken token) {
    MutexHolder hold(m_setLock);
    return m_moduleSet.contains(KeyOf(token));
}

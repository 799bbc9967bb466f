#include "sync/lock_stat_manager.h"

#include "sync/owned_mutex.h"

// Exempt from the statistics that it guards.
CQXLockStatManager::CQXLockStatManager() {
    QXMutexCreate("CQXLockStatManager::m_mutex", QX_MUTEX_NOSTATS, &m_mutex);
}

CQXLockStatManager::~CQXLockStatManager() {
    DestroyOwnedMutex(m_mutex);
}

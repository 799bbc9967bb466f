// The process-wide record of measured mutexes. It outlives the mutex provider.
#ifndef QX_SYNC_LOCK_STAT_MANAGER_H
#define QX_SYNC_LOCK_STAT_MANAGER_H

#include "sync/owned_mutex.h"

class CQXLockStatManager {
  public:
    CQXLockStatManager() = default;
    CQXLockStatManager(const CQXLockStatManager&) = delete;
    CQXLockStatManager& operator=(const CQXLockStatManager&) = delete;

  private:
    // Exempt from the statistics that it guards.
    OwnedMutex m_mutex{"CQXLockStatManager::m_mutex", QX_MUTEX_NOSTATS};
};

#endif

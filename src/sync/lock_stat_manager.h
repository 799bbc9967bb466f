// The process-wide record of measured mutexes. It outlives the mutex provider.
#ifndef QX_SYNC_LOCK_STAT_MANAGER_H
#define QX_SYNC_LOCK_STAT_MANAGER_H

#include <qxcore/mutex.h>

class CQXLockStatManager {
  public:
    CQXLockStatManager();
    ~CQXLockStatManager();
    CQXLockStatManager(const CQXLockStatManager&) = delete;
    CQXLockStatManager& operator=(const CQXLockStatManager&) = delete;

  private:
    QXHandle m_mutex;
};

#endif

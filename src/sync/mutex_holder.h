// Holds a mutex of the exported interface for the length of a scope.
#ifndef QX_SYNC_MUTEX_HOLDER_H
#define QX_SYNC_MUTEX_HOLDER_H

#include <qxcore/mutex.h>

class MutexHolder {
  public:
    explicit MutexHolder(QXHandle mutex) : m_mutex(mutex) { QXMutexAcquire(m_mutex); }
    ~MutexHolder() { QXMutexRelease(m_mutex); }
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

  private:
    QXHandle m_mutex;
};

#endif

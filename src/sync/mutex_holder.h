// Holds a mutex of a manager for the length of a scope.
#ifndef QX_SYNC_MUTEX_HOLDER_H
#define QX_SYNC_MUTEX_HOLDER_H

#include <qxcore/mutex.h>

#include "core/exception.h"

class MutexHolder {
  public:
    // A mutex that could not be made, which nobody looked at then, is found out here.
    explicit MutexHolder(QXHandle mutex) : m_mutex(mutex) {
        if (m_mutex == QX_INVALID_HANDLE) {
            throw EQXCoreException(QX_E_OUTOFMEMORY);
        }
        QXMutexAcquire(m_mutex);
    }
    ~MutexHolder() { QXMutexRelease(m_mutex); }
    MutexHolder(const MutexHolder&) = delete;
    MutexHolder& operator=(const MutexHolder&) = delete;

  private:
    QXHandle m_mutex;
};

#endif

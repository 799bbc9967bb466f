// The end of a mutex that a manager created without looking at the result.
#ifndef QX_SYNC_OWNED_MUTEX_H
#define QX_SYNC_OWNED_MUTEX_H

#include <qxcore/mutex.h>

// A creation that failed left the invalid handle, which is not one to destroy.
inline void DestroyOwnedMutex(QXHandle mutex) {
    if (mutex != QX_INVALID_HANDLE) {
        QXMutexDestroy(mutex);
    }
}

#endif

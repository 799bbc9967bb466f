// A mutex that a manager owns.
#ifndef QX_SYNC_OWNED_MUTEX_H
#define QX_SYNC_OWNED_MUTEX_H

#include <qxcore/mutex.h>

// Nobody looks whether the creation succeeds. A creation that failed leaves the invalid handle,
// which is not one to destroy.
class OwnedMutex {
  public:
    OwnedMutex(const char* name, uint32_t flags) { QXMutexCreate(name, flags, &m_handle); }
    ~OwnedMutex() {
        if (m_handle != QX_INVALID_HANDLE) {
            QXMutexDestroy(m_handle);
        }
    }
    OwnedMutex(const OwnedMutex&) = delete;
    OwnedMutex& operator=(const OwnedMutex&) = delete;

    operator QXHandle() const { return m_handle; }

  private:
    QXHandle m_handle;
};

#endif

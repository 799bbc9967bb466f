// Keeps the parts of a trace, and message boxes, from getting mixed up.
#ifndef QX_CORE_DEBUG_LOCK_H
#define QX_CORE_DEBUG_LOCK_H

#include <qxcore/mutex.h>

#include <utility>

#include "core/exception.h"
#include "core/global_data.h"

// Holds the debug mutex, if there is one: alerts and trace also run before the initialisation and
// after the termination.
class DebugLock {
  public:
    DebugLock() {
        if (const QXHandle* const mutex = CQXGlobalData::m_debugMutex) {
            ThrowIfFailed(QXMutexAcquire(*mutex));
            m_held = mutex;
        }
    }
    ~DebugLock() {
        if (m_held != nullptr) {
            QXMutexRelease(*m_held);
        }
    }
    DebugLock(const DebugLock&) = delete;
    DebugLock& operator=(const DebugLock&) = delete;

    bool IsHeld() const { return m_held != nullptr; }

    // The usual way to the end, which tells of a failure.
    void Release() {
        if (m_held != nullptr) {
            ThrowIfFailed(QXMutexRelease(*std::exchange(m_held, nullptr)));
        }
    }

  private:
    const QXHandle* m_held = nullptr;
};

#endif

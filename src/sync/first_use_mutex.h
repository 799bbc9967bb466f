// A mutex that the first thread to need it creates.
#ifndef QX_SYNC_FIRST_USE_MUTEX_H
#define QX_SYNC_FIRST_USE_MUTEX_H

#include <qxcore/mutex.h>

#include <atomic>

#include "platform/threads.h"
#include "platform/types.h"

// A global of this class needs no constructor at load. The spin word guards the creation alone.
class FirstUseMutex {
  public:
    constexpr explicit FirstUseMutex(const char* name) noexcept : m_name(name) {}
    FirstUseMutex(const FirstUseMutex&) = delete;
    FirstUseMutex& operator=(const FirstUseMutex&) = delete;

    QXHandle Get() noexcept {
        if (!Exists()) {
            while (m_spin.exchange(1, std::memory_order_acquire) == 1) {
                platform::Sleep(1);
            }
            if (!Exists()) {
                Create();
            }
            m_spin.store(0, std::memory_order_release);
        }
        return Handle();
    }

    // Back to the state before the first use. Nobody uses the mutex any more.
    void Destroy() noexcept {
        if (Exists()) {
            QXMutexDestroy(Handle());
            m_handle.store(kNone, std::memory_order_relaxed);
        }
    }

  private:
    static constexpr std::intptr_t kNone = -1;

    bool Exists() const noexcept { return m_handle.load(std::memory_order_acquire) != kNone; }
    QXHandle Handle() const noexcept {
        return reinterpret_cast<QXHandle>(m_handle.load(std::memory_order_relaxed));
    }
    void Create() noexcept {
        QXHandle created;
        QXMutexCreate(m_name, 0, &created);
        m_handle.store(reinterpret_cast<std::intptr_t>(created), std::memory_order_release);
    }

    const char* const m_name;
    std::atomic<std::intptr_t> m_handle = kNone;
    std::atomic<u32> m_spin = 0;
};

#endif

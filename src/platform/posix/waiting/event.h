// Events and the process's own semaphores: see the page in wait_queue.h.
#ifndef QX_PLATFORM_POSIX_WAITING_EVENT_H
#define QX_PLATFORM_POSIX_WAITING_EVENT_H

#include "signalled_object.h"

namespace platform {

class Event final : public SignalledObject {
  public:
    explicit Event(bool manualReset) noexcept
        : SignalledObject(0, manualReset ? 0 : WaitQueue::kOne) {}

    void Set() noexcept {
        if (m_taken == 0) {
            m_queue.RaiseForAll();
        } else {
            m_queue.Raise(WaitQueue::kOne);
        }
    }

    void Reset() noexcept { m_queue.Clear(); }
};

class PrivateSemaphore final : public Semaphore {
  public:
    PrivateSemaphore(u32 count, u32 maximum) noexcept
        : Semaphore(count * WaitQueue::kOne), m_maximum(maximum * WaitQueue::kOne) {}

    bool Release() noexcept override { return m_queue.Raise(m_maximum); }

  private:
    const u32 m_maximum;
};

}  // namespace platform

#endif

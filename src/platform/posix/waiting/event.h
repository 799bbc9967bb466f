// Events and the process's own semaphores: see the page in wait_queue.h.
#ifndef QX_PLATFORM_POSIX_WAITING_EVENT_H
#define QX_PLATFORM_POSIX_WAITING_EVENT_H

#include "object.h"
#include "wait_queue.h"

namespace platform {

inline u32 WaitFor(WaitQueue& queue, u32 taken, u32 milliseconds) noexcept {
    const bool signalled =
        queue.TryTake(taken) || (milliseconds != 0 && queue.Wait(taken, milliseconds));
    return signalled ? kWaitObject0 : kWaitTimeout;
}

class Event final : public Object {
  public:
    explicit Event(bool manualReset) noexcept : m_manualReset(manualReset) {}

    u32 Wait(u32 milliseconds) noexcept override {
        return WaitFor(m_queue, m_manualReset ? 0 : WaitQueue::kOne, milliseconds);
    }

    void Set() noexcept {
        if (m_manualReset) {
            m_queue.RaiseForAll();
        } else {
            m_queue.Raise(WaitQueue::kOne);
        }
    }

    void Reset() noexcept { m_queue.Clear(); }

  private:
    WaitQueue m_queue;
    const bool m_manualReset;
};

class PrivateSemaphore final : public Semaphore {
  public:
    PrivateSemaphore(u32 count, u32 maximum) noexcept
        : m_queue(count * WaitQueue::kOne), m_maximum(maximum * WaitQueue::kOne) {}

    u32 Wait(u32 milliseconds) noexcept override {
        return WaitFor(m_queue, WaitQueue::kOne, milliseconds);
    }

    bool Release() noexcept override { return m_queue.Raise(m_maximum); }

  private:
    WaitQueue m_queue;
    const u32 m_maximum;
};

}  // namespace platform

#endif

// What a handle stands for that is not checked: an object with signals to take.
#ifndef QX_PLATFORM_POSIX_WAITING_SIGNALLED_OBJECT_H
#define QX_PLATFORM_POSIX_WAITING_SIGNALLED_OBJECT_H

#include "object.h"
#include "platform/waits.h"
#include "wait_queue.h"

namespace platform {

// The signals stand where a wait finds them without knowing the kind of the object. An object that
// keeps them elsewhere has none here.
class SignalledObject : public Object {
  public:
    bool TryTake() noexcept { return m_queue.TryTake(m_taken); }

    // Behind a try that failed.
    u32 Wait(u32 milliseconds) noexcept override {
        return milliseconds != 0 && m_queue.Wait(m_taken, milliseconds) ? kWaitObject0
                                                                        : kWaitTimeout;
    }

  protected:
    // Both as for a WaitQueue.
    SignalledObject(u32 count, u32 taken) noexcept : m_queue(count), m_taken(taken) {}

    WaitQueue m_queue;
    const u32 m_taken;
};

// What ReleaseSemaphore can be asked of.
class Semaphore : public SignalledObject {
  public:
    virtual bool Release() noexcept = 0;

  protected:
    explicit Semaphore(u32 count) noexcept : SignalledObject(count, WaitQueue::kOne) {}
};

}  // namespace platform

#endif

// A thread behind a handle. The C library's thread is joined by the first who waits for it, or
// detached when its handle is closed before.
//
// m_state goes from running to joining (by the first waiter) to joined (release, read with
// acquire), and nobody else writes it. m_exitCode is the joining waiter's until then.
#ifndef QX_PLATFORM_POSIX_THREAD_OBJECT_H
#define QX_PLATFORM_POSIX_THREAD_OBJECT_H

#include <pthread.h>

#include "checked_handles.h"

namespace platform {

class ThreadObject final : public CheckedObject {
  public:
    ThreadObject() noexcept;
    ~ThreadObject() override;

    void SetThread(pthread_t thread) noexcept { m_thread = thread; }
    void SetNoThread() noexcept { m_state.store(kJoined, std::memory_order_relaxed); }

    // `milliseconds` is all ones: until the thread has ended, its own variables' destructors
    // included. For ever, if the thread waits for itself. Fails with 6 in a forked child, which
    // does not have the thread.
    u32 Wait(u32 milliseconds) noexcept override;

    u32 ExitCode() const noexcept;

  private:
    enum State : u32 { kRunning, kJoining, kJoined };

    void Join() noexcept;
    bool IsInherited() const noexcept;

    pthread_t m_thread = {};
    u32 m_exitCode = 0;
    const u32 m_generation;
    std::atomic<u32> m_state{kRunning};
};

// To be called in a forked child: the threads of its parent are not its own.
void ForgetInheritedThreads() noexcept;

}  // namespace platform

#endif

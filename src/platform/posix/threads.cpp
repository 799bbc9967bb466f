#include "platform/threads.h"

#include <sched.h>
#include <time.h>
#include <unistd.h>

#include "cancellation.h"
#include "platform/errors.h"

namespace platform {

constinit thread_local std::uint32_t t_threadId = 0;

[[gnu::cold]] u32 LearnThreadId() noexcept {
    t_threadId = static_cast<u32>(::gettid());
    return t_threadId;
}

void Sleep(u32 milliseconds) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff noCancellation;
    if (milliseconds == 0) {
        ::sched_yield();
        return;
    }
    if (milliseconds == UINT32_MAX) {
        for (;;) {
            ::pause();
        }
    }
    timespec deadline;
    ::clock_gettime(CLOCK_MONOTONIC, &deadline);
    deadline.tv_sec += milliseconds / 1000;
    deadline.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
    if (deadline.tv_nsec >= 1'000'000'000) {
        deadline.tv_sec += 1;
        deadline.tv_nsec -= 1'000'000'000;
    }
    while (::clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr) == EINTR) {
    }
}

}  // namespace platform

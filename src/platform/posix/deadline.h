// The end of a timed wait, on the monotonic clock.
#ifndef QX_PLATFORM_POSIX_DEADLINE_H
#define QX_PLATFORM_POSIX_DEADLINE_H

#include <time.h>

#include "platform/waits.h"

namespace platform {

class Deadline {
  public:
    // `milliseconds` from now; never, if all ones.
    explicit Deadline(u32 milliseconds) noexcept : m_endless(milliseconds == kInfinite) {
        if (m_endless) {
            return;
        }
        ::clock_gettime(CLOCK_MONOTONIC, &m_time);
        m_time.tv_sec += milliseconds / 1000;
        m_time.tv_nsec += static_cast<long>(milliseconds % 1000) * 1'000'000;
        if (m_time.tv_nsec >= 1'000'000'000) {
            m_time.tv_sec += 1;
            m_time.tv_nsec -= 1'000'000'000;
        }
    }

    // Null if there is no end.
    const timespec* Time() const noexcept { return m_endless ? nullptr : &m_time; }

  private:
    bool m_endless;
    timespec m_time;
};

}  // namespace platform

#endif

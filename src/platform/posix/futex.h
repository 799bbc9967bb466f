// Sleeping on a 32-bit word until somebody wakes it.
#ifndef QX_PLATFORM_POSIX_FUTEX_H
#define QX_PLATFORM_POSIX_FUTEX_H

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cstdint>

#include "platform/errors.h"

namespace platform {

// Sleeps while the word holds `expected`; may also return for no reason.
inline void FutexWait(std::atomic<std::uint32_t>* word, std::uint32_t expected) noexcept {
    ErrnoKeeper keepErrno;
    ::syscall(SYS_futex, word, FUTEX_WAIT_PRIVATE, expected, nullptr, nullptr, 0);
}

// Wakes up to `count` sleepers. By address only: the word may be gone by then.
inline void FutexWake(std::atomic<std::uint32_t>* word, int count) noexcept {
    ErrnoKeeper keepErrno;
    ::syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, count, nullptr, nullptr, 0);
}

}  // namespace platform

#endif

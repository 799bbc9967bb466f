// Sleeping on a 32-bit word until somebody wakes it. A system call by its number is no cancellation
// point.
#ifndef QX_PLATFORM_POSIX_FUTEX_H
#define QX_PLATFORM_POSIX_FUTEX_H

#include <linux/futex.h>
#include <sys/syscall.h>
#include <time.h>
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

// The same up to a time on the monotonic clock; null for no end. False once that time has come.
inline bool FutexWaitUntil(std::atomic<std::uint32_t>* word, std::uint32_t expected,
                           const timespec* deadline) noexcept {
    ErrnoKeeper keepErrno;
    return ::syscall(SYS_futex, word, FUTEX_WAIT_BITSET_PRIVATE, expected, deadline, nullptr,
                     FUTEX_BITSET_MATCH_ANY) == 0 ||
           errno != ETIMEDOUT;
}

// Wakes up to `count` sleepers. By address only: the word may be gone by then.
inline void FutexWake(std::atomic<std::uint32_t>* word, int count) noexcept {
    ErrnoKeeper keepErrno;
    ::syscall(SYS_futex, word, FUTEX_WAKE_PRIVATE, count, nullptr, nullptr, 0);
}

// The same for a word that processes share. True if the caller was woken by SharedFutexWake, and
// not for any other reason; that wake-up counts as his.
inline bool SharedFutexWait(std::atomic<std::uint32_t>* word, std::uint32_t expected) noexcept {
    ErrnoKeeper keepErrno;
    return ::syscall(SYS_futex, word, FUTEX_WAIT, expected, nullptr, nullptr, 0) == 0;
}

// Returns how many were woken.
inline long SharedFutexWake(std::atomic<std::uint32_t>* word, int count) noexcept {
    ErrnoKeeper keepErrno;
    return ::syscall(SYS_futex, word, FUTEX_WAKE, count, nullptr, nullptr, 0);
}

}  // namespace platform

#endif

#include "registry_run.h"

#include <time.h>

namespace platform {
namespace {

constexpr i64 kPatienceMilliseconds = 5'000;

i64 MonotonicMilliseconds() noexcept {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return i64{1000} * now.tv_sec + now.tv_nsec / 1'000'000;
}

// Longer with each wait, up to some milliseconds, and never the same for two processes.
void SleepWithJitter(u32 waits) noexcept {
    const u32 most = 50'000u << (waits < 6 ? waits : 6);
    u32 random = 0;
    sqlite::randomness(sizeof random, &random);
    const timespec pause{.tv_sec = 0, .tv_nsec = most / 2 + random % (most / 2)};
    ::nanosleep(&pause, nullptr);
}

}  // namespace

Patience::Patience() noexcept : m_deadline(MonotonicMilliseconds() + kPatienceMilliseconds) {}

bool Patience::Wait() noexcept {
    if (MonotonicMilliseconds() >= m_deadline) {
        return false;
    }
    SleepWithJitter(m_waits++);
    return true;
}

}  // namespace platform

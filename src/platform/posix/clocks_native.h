#ifndef QX_PLATFORM_POSIX_CLOCKS_NATIVE_H
#define QX_PLATFORM_POSIX_CLOCKS_NATIVE_H

#include <time.h>

#include <cstdint>

namespace platform {

// The reference platform's rate, so that arithmetic on ticks has the same room.
inline constexpr std::int64_t kTicksPerSecond = 10'000'000;

struct FILETIME {
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

// The clocks asked for here exist on every kernel, so reading them does not fail.
inline bool QueryPerformanceCounter(std::int64_t* ticks) noexcept {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    *ticks = now.tv_sec * kTicksPerSecond + static_cast<std::uint32_t>(now.tv_nsec) / 100;
    return true;
}

inline bool QueryPerformanceFrequency(std::int64_t* ticksPerSecond) noexcept {
    *ticksPerSecond = kTicksPerSecond;
    return true;
}

inline std::uint32_t GetTickCount() noexcept {
    timespec now;
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<std::uint32_t>(now.tv_sec * 1000 + now.tv_nsec / 1'000'000);
}

}  // namespace platform

#endif

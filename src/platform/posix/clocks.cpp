#include "platform/clocks.h"

#include <time.h>

#include <string_view>

#include "platform/types.h"

namespace platform {
namespace {

constexpr u64 kStepsPerSecond = 10'000'000;
constexpr u64 kSecondsFrom1601To1970 = 11'644'473'600;

void ReadClock(clockid_t clock, FILETIME* now) noexcept {
    timespec time;
    ::clock_gettime(clock, &time);
    const u64 steps = (static_cast<u64>(time.tv_sec) + kSecondsFrom1601To1970) * kStepsPerSecond +
                      static_cast<u32>(time.tv_nsec) / 100;
    now->dwLowDateTime = static_cast<u32>(steps);
    now->dwHighDateTime = static_cast<u32>(steps >> 32);
}

void ReadPreciseClock(FILETIME* now) {
    ReadClock(CLOCK_REALTIME, now);
}

void ReadCoarseClock(FILETIME* now) {
    ReadClock(CLOCK_REALTIME_COARSE, now);
}

}  // namespace

SystemTimeFunction FindSystemTimeFunction(const char* name) noexcept {
    const std::string_view wanted = name;
    if (wanted == "GetSystemTimePreciseAsFileTime") {
        return ReadPreciseClock;
    }
    if (wanted == "GetSystemTimeAsFileTime") {
        return ReadCoarseClock;
    }
    return nullptr;
}

}  // namespace platform

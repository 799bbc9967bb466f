// A made-up time source behind the library.
#include <gtest/gtest.h>
#include <qxcore/time.h>

#include "core/system_time.h"

namespace {

constexpr u64 kStartOf1970 = 116'444'736'000'000'000;

u64 s_ticks = 0;

void GiveTicks(platform::FILETIME* now) {
    now->dwLowDateTime = static_cast<u32>(s_ticks);
    now->dwHighDateTime = static_cast<u32>(s_ticks >> 32);
}

TEST(TimeSource, TimestampIsNeverZero) {
    struct Case {
        u64 ticks;
        u64 timestamp;
    };
    s_pfnGetPreciseTime = GiveTicks;
    for (const auto& [ticks, expected] :
         {Case{0, 1}, Case{kStartOf1970 - 1, 1}, Case{kStartOf1970, 1}, Case{kStartOf1970 + 1, 100},
          Case{kStartOf1970 + 12'345'678'901'234'567, 1'234'567'890'123'456'700}}) {
        s_ticks = ticks;
        u64 timestamp = 0;
        QXTimeSpec spec = {};
        EXPECT_EQ(QX_S_OK, QXTimeGetPreciseTimestamp(&timestamp));
        EXPECT_EQ(QX_S_OK, QXTimeGetTimeOfDay(&spec));
        EXPECT_EQ(expected, timestamp);
        EXPECT_EQ(static_cast<i64>(expected / 1'000'000'000), spec.seconds);
        EXPECT_EQ(static_cast<i64>(expected % 1'000'000'000), spec.nanoseconds);
    }
}

}  // namespace

// Zones and moments that the test chooses: it puts a clock of its own in the place of the system's.
#include <gtest/gtest.h>
#include <qxcore/time.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <tuple>

#include "posix/support/forked_child.h"

namespace {

constexpr int64_t kJanuary = 1'768'435'200;  // 2026-01-15 00:00:00
constexpr int64_t kJuly = 1'784'073'600;     // 2026-07-15 00:00:00

// 0 for the system's own.
std::atomic<int64_t> s_now = 0;

void Enter(const char* zone, int64_t now) {
    setenv("LC_ALL", "C", 1);
    setenv("TZ", zone, 1);
    s_now = now;
}

}  // namespace

extern "C" int clock_gettime(clockid_t clock, timespec* out) noexcept {
    if (clock == CLOCK_REALTIME && s_now != 0) {
        *out = {s_now, 123'456'789};
        return 0;
    }
    return static_cast<int>(syscall(SYS_clock_gettime, clock, out));
}

namespace {

TEST(TimeZone, IsThatOfTheMoment) {
    const std::string longZone = std::string(40, 'L') + "3";
    const std::u16string longName(31, u'L');
    const struct {
        const char* zone;
        int64_t now;
        int32_t bias;
        int16_t isDaylight;
        std::u16string standardName;
        std::u16string daylightName;
    } cases[] = {
        {":Europe/Berlin", kJuly, -7200, 1, u"Central European Standard Time",
         u"Central European Summer Time"},
        {"Australia/Sydney", kJanuary, -39600, 1, u"Australian Eastern Standard Tim",
         u"Australian Eastern Daylight Tim"},
        {"Australia/Lord_Howe", kJuly, -37800, 0, u"Lord Howe Standard Time",
         u"Lord Howe Daylight Time"},
        {"/usr/share/zoneinfo/Asia/Tokyo", kJuly, -32400, 0, u"Japan Standard Time",
         u"Japan Daylight Time"},
        {"", kJuly, 0, 0, u"Coordinated Universal Time", u"GMT"},
        {"ABC3DEF,M3.5.0,M10.5.0", kJuly, 7200, 1, u"ABC", u"DEF"},
        {"<+0330>-3:30", kJuly, -12600, 0, u"+0330", u"+0330"},
        {"Foo/Bar", kJuly, 0, 0, u"Foo", u"Foo"},
        {longZone.c_str(), kJuly, 10800, 0, longName, longName},
    };
    QXTimeZoneRecord zone;
    for (const auto& each : cases) {
        SCOPED_TRACE(each.zone);
        Enter(each.zone, each.now);
        ASSERT_EQ(QX_S_OK, QXTimeGetZone(&zone));
        EXPECT_EQ(std::tuple(each.bias, each.isDaylight),
                  std::tuple(zone.biasSeconds, zone.isDaylight));
        EXPECT_EQ(each.standardName, zone.standardName);
        EXPECT_EQ(each.daylightName, zone.daylightName);
    }
    Enter("\xFF/%s", kJuly);
    EXPECT_EQ(QX_S_OK, QXTimeGetZone(&zone));
    EXPECT_EQ(0, zone.biasSeconds);
}

TEST(TimeZone, ADateOfTheOtherSeasonMovesByTheHour) {
    const QXTimeRecord january = {2026, 1, 4, 15, 12, 0, 0, 0};
    const QXTimeRecord july = {2026, 7, 3, 15, 12, 0, 0, 0};
    const struct {
        int64_t now;
        QXTimeRecord record;
        int64_t seconds;
    } cases[] = {{kJanuary, january, kJanuary + 11 * 3600},
                 {kJuly, january, kJanuary + 10 * 3600},
                 {kJuly, july, kJuly + 10 * 3600},
                 {kJanuary, july, kJuly + 11 * 3600}};
    for (const auto& [now, record, expected] : cases) {
        Enter("Europe/Berlin", now);
        int64_t seconds = 0;
        EXPECT_EQ(QX_S_OK, QXTimeToPosix(&record, &seconds));
        EXPECT_EQ(expected, seconds);
    }
}

TEST(TimeZone, AClockOfAnotherZoneOrBefore1970IsRead) {
    QXTimeRecord record;
    Enter("Europe/Berlin", kJuly);
    EXPECT_EQ(QX_S_OK, QXTimeGetLocal(&record));
    EXPECT_EQ(2, record.hour);
    Enter("Asia/Tokyo", kJuly);
    EXPECT_EQ(QX_S_OK, QXTimeGetLocal(&record));
    EXPECT_EQ(std::tuple(15, 9, 0, 0, 123), std::tuple(record.day, record.hour, record.minute,
                                                       record.second, record.milliseconds));
    Enter("UTC", -1);
    EXPECT_EQ(QX_S_OK, QXTimeGetSystem(&record));
    EXPECT_EQ(std::tuple(1969, 12, 3, 31, 23, 59, 59),
              std::tuple(record.year, record.month, record.dayOfWeek, record.day, record.hour,
                         record.minute, record.second));
    uint64_t timestamp = 0;
    EXPECT_EQ(QX_S_OK, QXTimeGetPreciseTimestamp(&timestamp));
    EXPECT_EQ(1u, timestamp);
}

TEST(TimeZone, AForkInTheMiddleOfAConversionLeavesTheChildAWay) {
    Enter("Europe/Berlin", kJuly);
    std::atomic<bool> done = false;
    std::thread converter([&] {
        QXTimeRecord record;
        while (!done) {
            QXTimeFromPosix(kJuly, &record);
        }
    });
    for (int round = 0; round < 200; ++round) {
        ForkedChild child([] {
            alarm(20);
            QXTimeRecord record;
            return QXTimeFromPosix(kJuly, &record);
        });
        ASSERT_EQ(0, child.Wait());
    }
    done = true;
    converter.join();
}

}  // namespace

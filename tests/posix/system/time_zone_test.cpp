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

using Zone = std::tuple<int32_t, int16_t, std::u16string, std::u16string>;

Zone ZoneAt(const char* name, int64_t now) {
    Enter(name, now);
    QXTimeZoneRecord zone;
    EXPECT_EQ(QX_S_OK, QXTimeGetZone(&zone));
    return {zone.biasSeconds, zone.isDaylight, zone.standardName, zone.daylightName};
}

TEST(TimeZone, IsThatOfTheMoment) {
    EXPECT_EQ(ZoneAt(":Europe/Berlin", kJuly),
              Zone(-7200, 1, u"Central European Standard Time", u"Central European Summer Time"));
    EXPECT_EQ(
        ZoneAt("Australia/Sydney", kJanuary),
        Zone(-39600, 1, u"Australian Eastern Standard Tim", u"Australian Eastern Daylight Tim"));
    EXPECT_EQ(ZoneAt("Australia/Lord_Howe", kJuly),
              Zone(-37800, 0, u"Lord Howe Standard Time", u"Lord Howe Daylight Time"));
    EXPECT_EQ(ZoneAt("/usr/share/zoneinfo/Asia/Tokyo", kJuly),
              Zone(-32400, 0, u"Japan Standard Time", u"Japan Daylight Time"));
    EXPECT_EQ(ZoneAt("", kJuly), Zone(0, 0, u"Coordinated Universal Time", u"GMT"));
    EXPECT_EQ(ZoneAt("ABC3DEF,M3.5.0,M10.5.0", kJuly), Zone(7200, 1, u"ABC", u"DEF"));
    EXPECT_EQ(ZoneAt("<+0330>-3:30", kJuly), Zone(-12600, 0, u"+0330", u"+0330"));
    EXPECT_EQ(ZoneAt("Foo/Bar", kJuly), Zone(0, 0, u"Foo", u"Foo"));
    const std::u16string longest(31, u'L');
    EXPECT_EQ(ZoneAt((std::string(40, 'L') + "3").c_str(), kJuly),
              Zone(10800, 0, longest, longest));
    EXPECT_EQ(std::get<0>(ZoneAt("\xFF/%s", kJuly)), 0);
}

TEST(TimeZone, ADateOfTheOtherSeasonMovesByTheHour) {
    const auto secondsOf = [](uint16_t month, uint16_t dayOfWeek, int64_t now) {
        Enter("Europe/Berlin", now);
        const QXTimeRecord record = {2026, month, dayOfWeek, 15, 12, 0, 0, 0};
        int64_t seconds = 0;
        EXPECT_EQ(QX_S_OK, QXTimeToPosix(&record, &seconds));
        return seconds;
    };
    EXPECT_EQ(kJanuary + 11 * 3600, secondsOf(1, 4, kJanuary));
    EXPECT_EQ(kJanuary + 10 * 3600, secondsOf(1, 4, kJuly));
    EXPECT_EQ(kJuly + 10 * 3600, secondsOf(7, 3, kJuly));
    EXPECT_EQ(kJuly + 11 * 3600, secondsOf(7, 3, kJanuary));
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

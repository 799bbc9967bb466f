#include <gtest/gtest.h>
#include <qxcore/time.h>

#include <chrono>
#include <climits>
#include <cstring>
#include <ctime>
#include <tuple>

namespace {

auto Fields(const QXTimeRecord& record) {
    return std::tuple(record.year, record.month, record.dayOfWeek, record.day, record.hour,
                      record.minute, record.second);
}

TEST(Time, SystemTimeIsTheWallClock) {
    using namespace std::chrono;
    constexpr milliseconds kSlack{20};  // for a source that goes in steps
    const auto before = system_clock::now() - kSlack;
    QXTimeRecord record = {};
    uint64_t timestamp = 0;
    EXPECT_EQ(QX_S_OK, QXTimeGetSystem(&record));
    EXPECT_EQ(QX_S_OK, QXTimeGetPreciseTimestamp(&timestamp));
    const auto after = system_clock::now() + kSlack;
    const sys_days date{year(record.year) / record.month / record.day};
    EXPECT_EQ(weekday(date).c_encoding(), record.dayOfWeek);
    const sys_time<milliseconds> told = date + hours(record.hour) + minutes(record.minute) +
                                        seconds(record.second) + milliseconds(record.milliseconds);
    EXPECT_TRUE(before <= told && told <= after);
    const sys_time<nanoseconds> precise{nanoseconds(timestamp)};
    EXPECT_TRUE(before <= precise && precise <= after);
}

TEST(Time, LocalTimeGoesToPosixTimeAndBack) {
    QXTimeRecord local = {};
    QXTimeRecord back = {};
    int64_t seconds = 0;
    EXPECT_EQ(QX_S_OK, QXTimeGetLocal(&local));
    EXPECT_EQ(QX_S_OK, QXTimeToPosix(&local, &seconds));
    EXPECT_NEAR(static_cast<double>(std::time(nullptr)), static_cast<double>(seconds), 2);
    EXPECT_EQ(QX_S_OK, QXTimeFromPosix(seconds, &back));
    EXPECT_EQ(Fields(local), Fields(back));
    EXPECT_EQ(0, back.milliseconds);
}

TEST(Time, PosixTimeOutOfRangeIsRefused) {
    for (const int64_t seconds : {int64_t{-1}, int64_t{32'535'244'800}}) {
        QXTimeRecord record = {9, 9, 9, 9, 9, 9, 9, 9};
        EXPECT_EQ(QX_E_FAIL, QXTimeFromPosix(seconds, &record));
        EXPECT_EQ(std::tuple(0, 0, 0, 0, 0, 0, 0), Fields(record));
    }
    QXTimeRecord last = {};
    EXPECT_EQ(QX_S_OK, QXTimeFromPosix(32'535'215'999 - 86'400, &last));
    EXPECT_EQ(3000, last.year);
    for (const QXTimeRecord& record :
         {QXTimeRecord{1969, 6, 0, 1, 0, 0, 0, 0}, QXTimeRecord{3002, 1, 0, 1, 0, 0, 0, 0}}) {
        int64_t seconds = 0;
        EXPECT_EQ(QX_E_FAIL, QXTimeToPosix(&record, &seconds));
        EXPECT_EQ(-1, seconds);
    }
}

TEST(Time, TheCLibrarysFormIsCopiedFieldByField) {
    std::tm time = {};
    std::tie(time.tm_sec, time.tm_min, time.tm_hour, time.tm_mday, time.tm_year, time.tm_wday) =
        std::tuple(1, 2, 3, 4, 126, 5);
    QXTimeRecord record = {0, 0, 0, 0, 0, 0, 0, 77};
    EXPECT_EQ(QX_S_OK, QXTimeFromTM(&time, &record));
    EXPECT_EQ(std::tuple(2026, 1, 5, 4, 3, 2, 1), Fields(record));
    EXPECT_EQ(0, record.milliseconds);
    std::tm back;
    std::memset(&back, 0x55, sizeof back);
    EXPECT_EQ(QX_S_OK, QXTimeToTM(&record, &back));
    QXTimeZoneRecord zone;
    EXPECT_EQ(QX_S_OK, QXTimeGetZone(&zone));
    EXPECT_EQ(std::tuple(1, 2, 3, 4, 0, 126, 5, int{zone.isDaylight}, 0x55555555),
              std::tuple(back.tm_sec, back.tm_min, back.tm_hour, back.tm_mday, back.tm_mon,
                         back.tm_year, back.tm_wday, back.tm_isdst, back.tm_yday));
    time.tm_mon = INT_MAX;
    time.tm_year = 0x10000 - 1900;
    EXPECT_EQ(QX_S_OK, QXTimeFromTM(&time, &record));
    EXPECT_EQ(std::pair(0, 0), std::pair(int{record.month}, int{record.year}));
}

TEST(Time, CountersGoForward) {
    using std::chrono::steady_clock;
    constexpr double kSpan = 50;  // ms
    const auto millisecondsSince = [](steady_clock::time_point start) {
        return std::chrono::duration<double, std::milli>(steady_clock::now() - start).count();
    };
    const auto outerStart = steady_clock::now();
    const uint32_t startMs = QXPerfGetCountMS();
    const int64_t start = QXPerfGetCount();
    for (const auto innerStart = steady_clock::now(); millisecondsSince(innerStart) < kSpan;) {
    }
    const double counted = 1000.0 * static_cast<double>(QXPerfGetCount() - start) /
                           static_cast<double>(QXPerfGetFreq());
    EXPECT_GE(counted, 0.98 * kSpan);
    EXPECT_LE(counted, 1.02 * millisecondsSince(outerStart) + 1);
    EXPECT_GE(QXPerfGetCountMS() - startMs, 30u);
}

}  // namespace

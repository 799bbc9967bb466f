// Pointers are not tested, and nothing here throws.
#include <qxcore/string.h>
#include <qxcore/time.h>

#include <bit>
#include <cstddef>
#include <iterator>

#include "core/system_time.h"
#include "platform/calendar.h"
#include "platform/errors.h"

static_assert(sizeof(QXTimeRecord) == 16 && offsetof(QXTimeRecord, milliseconds) == 14);
static_assert(sizeof(QXTimeZoneRecord) == 136 && offsetof(QXTimeZoneRecord, isDaylight) == 4 &&
              offsetof(QXTimeZoneRecord, standardName) == 6 &&
              offsetof(QXTimeZoneRecord, daylightName) == 70);
static_assert(sizeof(QXTimeSpec) == 16 && offsetof(QXTimeSpec, nanoseconds) == 8);

namespace {

// The precise clock at the start of 1970.
constexpr u64 QXFileTimeToUnixEpoch = 0x019DB1DED53E8000;

// Never 0, which would look like no time at all.
u64 NanosecondsSince1970() {
    platform::FILETIME now;
    s_pfnGetPreciseTime(&now);
    const u64 ticks = u64{now.dwHighDateTime} << 32 | now.dwLowDateTime;
    return ticks > QXFileTimeToUnixEpoch ? (ticks - QXFileTimeToUnixEpoch) * 100 : 1;
}

u16 Low16(int value) {
    return static_cast<u16>(static_cast<u32>(value));
}

QXTimeRecord RecordOf(const std::tm& time) {
    return {.year = static_cast<u16>(Low16(time.tm_year) + 1900),
            .month = static_cast<u16>(Low16(time.tm_mon) + 1),
            .dayOfWeek = Low16(time.tm_wday),
            .day = Low16(time.tm_mday),
            .hour = Low16(time.tm_hour),
            .minute = Low16(time.tm_min),
            .second = Low16(time.tm_sec),
            .milliseconds = 0};
}

i32 SeasonBias(u32 season, const platform::TIME_ZONE_INFORMATION& zone) {
    switch (season) {
        case platform::kTimeZoneStandard:
            return zone.StandardBias;
        case platform::kTimeZoneDaylight:
            return zone.DaylightBias;
        default:
            return 0;
    }
}

}  // namespace

QXResult QXTimeGetLocal(QXTimeRecord* out) {
    platform::SYSTEMTIME now;
    platform::GetLocalTime(&now);
    *out = std::bit_cast<QXTimeRecord>(now);
    return QX_S_OK;
}

QXResult QXTimeGetSystem(QXTimeRecord* out) {
    platform::SYSTEMTIME now;
    platform::GetSystemTime(&now);
    *out = std::bit_cast<QXTimeRecord>(now);
    return QX_S_OK;
}

QXResult QXTimeGetPreciseTimestamp(uint64_t* out) {
    *out = NanosecondsSince1970();
    return QX_S_OK;
}

QXResult QXTimeGetTimeOfDay(QXTimeSpec* out) {
    constexpr u64 kNanosecondsPerSecond = 1'000'000'000;
    const u64 now = NanosecondsSince1970();
    out->seconds = static_cast<i64>(now / kNanosecondsPerSecond);
    out->nanoseconds = static_cast<i64>(now % kNanosecondsPerSecond);
    return QX_S_OK;
}

// The names keep the zero behind them that the whole record starts with.
QXResult QXTimeGetZone(QXTimeZoneRecord* out) {
    *out = {};
    platform::TIME_ZONE_INFORMATION zone;
    const u32 season = platform::GetTimeZoneInformation(&zone);
    if (season == platform::kTimeZoneInvalid) {
        return QXResultFromNative(platform::GetLastError());
    }
    out->biasSeconds = (zone.Bias + SeasonBias(season, zone)) * 60;
    out->isDaylight = season == platform::kTimeZoneDaylight ? 1 : 0;
    QXStrNCpyW(out->standardName, zone.StandardName, std::size(out->standardName) - 1);
    QXStrNCpyW(out->daylightName, zone.DaylightName, std::size(out->daylightName) - 1);
    return QX_S_OK;
}

QXResult QXTimeFromTM(const struct tm* source, QXTimeRecord* out) {
    *out = RecordOf(*source);
    return QX_S_OK;
}

QXResult QXTimeFromPosix(int64_t seconds, QXTimeRecord* out) {
    *out = {};
    std::tm local;
    if (platform::_localtime64_s(&local, &seconds) != 0) {
        return QX_E_FAIL;
    }
    *out = RecordOf(local);
    return QX_S_OK;
}

// The season is today's, whatever the record's date.
QXResult QXTimeToTM(const QXTimeRecord* record, struct tm* out) {
    out->tm_sec = record->second;
    out->tm_min = record->minute;
    out->tm_hour = record->hour;
    out->tm_mday = record->day;
    out->tm_mon = record->month - 1;
    out->tm_year = record->year - 1900;
    out->tm_wday = record->dayOfWeek;
    out->tm_isdst = platform::GetTimeZoneId() == platform::kTimeZoneDaylight ? 1 : 0;
    return QX_S_OK;
}

QXResult QXTimeToPosix(const QXTimeRecord* record, int64_t* out) {
    std::tm local = {};
    QXTimeToTM(record, &local);
    *out = platform::_mktime64(&local);
    return *out == -1 ? QX_E_FAIL : QX_S_OK;
}

// Without a performance counter the count is in milliseconds, and the frequency agrees.
int64_t QXPerfGetCount() {
    i64 ticks;
    return platform::QueryPerformanceCounter(&ticks) ? ticks : i64{platform::GetTickCount()};
}

uint32_t QXPerfGetCountMS() {
    return platform::GetTickCount();
}

int64_t QXPerfGetFreq() {
    i64 ticksPerSecond;
    return platform::QueryPerformanceFrequency(&ticksPerSecond) ? ticksPerSecond : 1000;
}

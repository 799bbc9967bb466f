// Universal time is reckoned here, local time by the C library, which is told each time to look
// whether the zone has changed.
#include "platform/calendar.h"

#include <time.h>

#include <chrono>

#include "calendar_lifetime.h"
#include "platform/errors.h"
#include "platform/files.h"
#include "platform/sync.h"
#include "time_zone_names.h"

namespace platform {
namespace {

// What file times are counted in, and from where.
constexpr i64 kStepsPerSecond = 10'000'000;
constexpr i64 kSecondsFrom1601To1970 = 11'644'473'600;

// 23:59:59 on the last day of the year 3000, universal time.
constexpr i64 kLastSecond = 32'535'215'999;

// The C library's lock on its zone is not free in a child that another thread forks in the middle
// of a conversion. This one, which is taken round each of ours, is. A handler of a signal may fork
// in the middle of one, too.
constinit CRITICAL_SECTION s_zoneLock;

// The C library's zone, as it is now.
class Zone {
  public:
    Zone() noexcept {
        EnterCriticalSection(&s_zoneLock);
        ::tzset();
    }
    ~Zone() { LeaveCriticalSection(&s_zoneLock); }
    Zone(const Zone&) = delete;
    Zone& operator=(const Zone&) = delete;

    bool ToLocal(i64 seconds, std::tm* local) const noexcept {
        const time_t time = seconds;
        return ::localtime_r(&time, local) != nullptr;
    }
    i64 FromLocal(std::tm* local) const noexcept { return ::mktime(local); }

  private:
    const ErrnoKeeper m_keepErrno;
};

timespec Now() noexcept {
    timespec now;
    ::clock_gettime(CLOCK_REALTIME, &now);
    return now;
}

// Broken down without a zone.
SYSTEMTIME UniversalTime(i64 seconds, long nanoseconds) noexcept {
    using namespace std::chrono;
    const sys_seconds moment{std::chrono::seconds(seconds)};
    const sys_days midnight = floor<days>(moment);
    const year_month_day date(midnight);
    const hh_mm_ss time(moment - midnight);
    return {.wYear = static_cast<u16>(static_cast<int>(date.year())),
            .wMonth = static_cast<u16>(static_cast<unsigned>(date.month())),
            .wDayOfWeek = static_cast<u16>(weekday(midnight).c_encoding()),
            .wDay = static_cast<u16>(static_cast<unsigned>(date.day())),
            .wHour = static_cast<u16>(time.hours().count()),
            .wMinute = static_cast<u16>(time.minutes().count()),
            .wSecond = static_cast<u16>(time.seconds().count()),
            .wMilliseconds = static_cast<u16>(nanoseconds / 1'000'000)};
}

// The zone's two seasons. One that does not come within a year is the same as the other.
struct Seasons {
    u32 m_inForce;
    std::tm m_standard;
    std::tm m_daylight;
};

// A moment within the next year at which the other season is in force.
bool FindOtherSeason(const Zone& zone, i64 now, bool isDaylight, std::tm* found) noexcept {
    constexpr i64 kStep = i64{14} * 24 * 3600;
    for (int step = 1; step <= 27; ++step) {
        if (zone.ToLocal(now + step * kStep, found) && (found->tm_isdst > 0) != isDaylight) {
            return true;
        }
    }
    return false;
}

bool FindSeasons(Seasons* seasons) noexcept {
    const Zone zone;
    const i64 now = Now().tv_sec;
    std::tm current;
    if (!zone.ToLocal(now, &current)) {
        return false;
    }
    const bool isDaylight = current.tm_isdst > 0;
    std::tm other;
    const bool hasOther = FindOtherSeason(zone, now, isDaylight, &other);
    if (!hasOther) {
        other = current;
    }
    seasons->m_inForce = isDaylight ? kTimeZoneDaylight
                         : hasOther ? kTimeZoneStandard
                                    : kTimeZoneUnknown;
    seasons->m_standard = isDaylight ? other : current;
    seasons->m_daylight = isDaylight ? current : other;
    return true;
}

i64 StepsOf(const FILETIME& time) noexcept {
    return static_cast<i64>(u64{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

void StoreSteps(i64 steps, FILETIME* time) noexcept {
    time->dwLowDateTime = static_cast<u32>(steps);
    time->dwHighDateTime = static_cast<u32>(static_cast<u64>(steps) >> 32);
}

i32 BiasOf(const std::tm& season) noexcept {
    return static_cast<i32>(-season.tm_gmtoff / 60);
}

}  // namespace

void HoldCalendarForFork() noexcept {
    EnterCriticalSection(&s_zoneLock);
}

void FreeCalendarAfterFork() noexcept {
    LeaveCriticalSection(&s_zoneLock);
}

void GetSystemTime(SYSTEMTIME* now) noexcept {
    const timespec time = Now();
    *now = UniversalTime(time.tv_sec, time.tv_nsec);
}

void GetLocalTime(SYSTEMTIME* now) noexcept {
    const timespec time = Now();
    std::tm local;
    const bool known = Zone().ToLocal(time.tv_sec, &local);
    *now = UniversalTime(time.tv_sec + (known ? local.tm_gmtoff : 0), time.tv_nsec);
}

u32 GetTimeZoneId() noexcept {
    const Zone zone;
    const i64 now = Now().tv_sec;
    std::tm local;
    if (!zone.ToLocal(now, &local)) {
        return kTimeZoneInvalid;
    }
    return local.tm_isdst > 0 ? kTimeZoneDaylight : kTimeZoneStandard;
}

u32 GetTimeZoneInformation(TIME_ZONE_INFORMATION* zone) noexcept {
    Seasons seasons;
    if (!FindSeasons(&seasons)) {
        SetLastError(kErrorOutOfMemory);
        return kTimeZoneInvalid;
    }
    zone->Bias = BiasOf(seasons.m_standard);
    zone->StandardBias = 0;
    zone->DaylightBias = BiasOf(seasons.m_daylight) - zone->Bias;
    FindTimeZoneNames(seasons.m_standard.tm_zone, zone->StandardName, seasons.m_daylight.tm_zone,
                      zone->DaylightName);
    return seasons.m_inForce;
}

int _localtime64_s(std::tm* local, const i64* seconds) noexcept {
    if (*seconds < 0 || *seconds > kLastSecond) {
        return EINVAL;
    }
    return Zone().ToLocal(*seconds, local) ? 0 : EINVAL;
}

i64 _mktime64(std::tm* local) noexcept {
    const i64 seconds = Zone().FromLocal(local);
    return seconds >= 0 && seconds <= kLastSecond ? seconds : -1;
}

bool FileTimeToLocalFileTime(const FILETIME* time, FILETIME* local) noexcept {
    std::tm now;
    if (!Zone().ToLocal(Now().tv_sec, &now)) {
        SetLastError(kErrorOutOfMemory);
        return false;
    }
    StoreSteps(StepsOf(*time) + now.tm_gmtoff * kStepsPerSecond, local);
    return true;
}

bool FileTimeToSystemTime(const FILETIME* time, SYSTEMTIME* record) noexcept {
    const i64 steps = StepsOf(*time);
    if (steps < 0) {
        SetLastError(kErrorInvalidParameter);
        return false;
    }
    *record = UniversalTime(steps / kStepsPerSecond - kSecondsFrom1601To1970,
                            static_cast<long>(steps % kStepsPerSecond) * 100);
    return true;
}

}  // namespace platform

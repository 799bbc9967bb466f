// The calendar and the time zone.
#ifndef QX_PLATFORM_CALENDAR_H
#define QX_PLATFORM_CALENDAR_H

#include <calendar_native.h>

#include <ctime>

#include "platform/types.h"

namespace platform {

// Nothing here blocks for long: the zone may be read from a file. It is looked at anew in each
// call.

// The back end defines SYSTEMTIME: eight fields of 16 bits, the year, the month from 1, the day of
// the week from Sunday, the day, the hour, the minute, the second and the milliseconds.
void GetLocalTime(SYSTEMTIME* now) noexcept;
void GetSystemTime(SYSTEMTIME* now) noexcept;

// Minutes to be added to local time for universal time: those of the season go on top of the
// others. Names end with a zero unit if they are shorter than their place.
struct TIME_ZONE_INFORMATION {
    i32 Bias;
    char16_t StandardName[32];
    i32 StandardBias;
    char16_t DaylightName[32];
    i32 DaylightBias;
};

// The season that is in force.
enum TimeZoneId : u32 {
    kTimeZoneUnknown = 0,           // TIME_ZONE_ID_UNKNOWN: the zone knows no seasons
    kTimeZoneStandard = 1,          // TIME_ZONE_ID_STANDARD
    kTimeZoneDaylight = 2,          // TIME_ZONE_ID_DAYLIGHT
    kTimeZoneInvalid = 0xFFFFFFFF,  // TIME_ZONE_ID_INVALID: a failure: the last error tells
};

u32 GetTimeZoneInformation(TIME_ZONE_INFORMATION* zone) noexcept;

// What the other one returns, at less cost: names are not looked up.
u32 GetTimeZoneId() noexcept;

// The C library's local time for seconds since the start of 1970. An error number, and nothing
// said of `local`, if they are negative or lie behind the year 3000; otherwise 0.
int _localtime64_s(std::tm* local, const i64* seconds) noexcept;

// And back, with tm_isdst telling which season is meant. Fields are brought into their ranges. -1
// for what lies before 1970 or behind the year 3000.
i64 _mktime64(std::tm* local) noexcept;

}  // namespace platform

#endif

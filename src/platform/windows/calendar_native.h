#ifndef QX_PLATFORM_WINDOWS_CALENDAR_NATIVE_H
#define QX_PLATFORM_WINDOWS_CALENDAR_NATIVE_H

#include <algorithm>
#include <ctime>

#include "system_headers.h"

namespace platform {

using ::SYSTEMTIME;
struct TIME_ZONE_INFORMATION;

inline void GetLocalTime(SYSTEMTIME* now) noexcept {
    ::GetLocalTime(now);
}

inline void GetSystemTime(SYSTEMTIME* now) noexcept {
    ::GetSystemTime(now);
}

template <typename Zone>
u32 ReadTimeZone(Zone* zone) noexcept {
    ::TIME_ZONE_INFORMATION native;
    const DWORD id = ::GetTimeZoneInformation(&native);
    if (id != TIME_ZONE_ID_INVALID) {
        zone->Bias = native.Bias;
        std::copy(native.StandardName, native.StandardName + 32, zone->StandardName);
        zone->StandardBias = native.StandardBias;
        std::copy(native.DaylightName, native.DaylightName + 32, zone->DaylightName);
        zone->DaylightBias = native.DaylightBias;
    }
    return id;
}

inline u32 GetTimeZoneInformation(TIME_ZONE_INFORMATION* zone) noexcept {
    return ReadTimeZone(zone);
}

inline u32 GetTimeZoneId() noexcept {
    ::TIME_ZONE_INFORMATION zone;
    return ::GetTimeZoneInformation(&zone);
}

inline int _localtime64_s(std::tm* local, const i64* seconds) noexcept {
    const __time64_t time = *seconds;
    return ::_localtime64_s(local, &time);
}

inline i64 _mktime64(std::tm* local) noexcept {
    return ::_mktime64(local);
}

}  // namespace platform

#endif

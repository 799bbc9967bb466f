// What people call the process's time zone.
#ifndef QX_PLATFORM_POSIX_TIME_ZONE_NAMES_H
#define QX_PLATFORM_POSIX_TIME_ZONE_NAMES_H

namespace platform {

inline constexpr int kZoneNameUnits = 32;

// The names of the zone's two seasons, cut to their place and terminated: ICU's if it knows the
// zone, and otherwise the abbreviations that are given.
void FindTimeZoneNames(const char* standard, char16_t* standardName, const char* daylight,
                       char16_t* daylightName) noexcept;

}  // namespace platform

#endif

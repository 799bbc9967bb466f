#ifndef QX_PLATFORM_POSIX_CALENDAR_NATIVE_H
#define QX_PLATFORM_POSIX_CALENDAR_NATIVE_H

#include <cstdint>

namespace platform {

struct SYSTEMTIME {
    std::uint16_t wYear;
    std::uint16_t wMonth;
    std::uint16_t wDayOfWeek;
    std::uint16_t wDay;
    std::uint16_t wHour;
    std::uint16_t wMinute;
    std::uint16_t wSecond;
    std::uint16_t wMilliseconds;
};

}  // namespace platform

#endif

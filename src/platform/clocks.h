// Clocks.
#ifndef QX_PLATFORM_CLOCKS_H
#define QX_PLATFORM_CLOCKS_H

#include <clocks_native.h>

namespace platform {

// The back end defines FILETIME: two 32-bit halves, dwLowDateTime and dwHighDateTime, of a count
// of 100-nanosecond steps since the start of the year 1601 in universal time.
using SystemTimeFunction = void (*)(FILETIME* now);

// Finds a time source by the reference platform's name for it, "GetSystemTimePreciseAsFileTime" or
// "GetSystemTimeAsFileTime". Null if this system does not offer it. Reads no file of its own.
SystemTimeFunction FindSystemTimeFunction(const char* name) noexcept;

}  // namespace platform

#endif

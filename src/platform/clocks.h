// Clocks.
#ifndef QX_PLATFORM_CLOCKS_H
#define QX_PLATFORM_CLOCKS_H

#include <clocks_native.h>

#include "platform/types.h"

namespace platform {

// The back end defines FILETIME: two 32-bit halves, dwLowDateTime and dwHighDateTime, of a count
// of 100-nanosecond steps since the start of the year 1601 in universal time.
using SystemTimeFunction = void (*)(FILETIME* now);

// Finds a time source by the reference platform's name for it, "GetSystemTimePreciseAsFileTime" or
// "GetSystemTimeAsFileTime". Null if this system does not offer it. Reads no file of its own.
SystemTimeFunction FindSystemTimeFunction(const char* name) noexcept;

// A count of ticks that never goes back, for measuring. False if the system has none. Makes no
// system call where the kernel offers its clocks without one. Does not block; the last error is set
// on a failure only.
bool QueryPerformanceCounter(i64* ticks) noexcept;

// How many ticks a second has, the same for the life of the process.
bool QueryPerformanceFrequency(i64* ticksPerSecond) noexcept;

// Milliseconds since the system started, its sleep included; starts over after 2^32.
u32 GetTickCount() noexcept;

}  // namespace platform

#endif

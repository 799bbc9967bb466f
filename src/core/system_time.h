// The source of the system time, chosen when the library is loaded.
#ifndef QX_CORE_SYSTEM_TIME_H
#define QX_CORE_SYSTEM_TIME_H

#include "platform/clocks.h"

extern platform::SystemTimeFunction s_pfnGetPreciseTime;

// Takes the precise source, or the older one where the system has no other.
void QXResolveTimeFunctions();

#endif

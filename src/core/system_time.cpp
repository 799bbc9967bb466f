#include "core/system_time.h"

constinit platform::SystemTimeFunction s_pfnGetPreciseTime = nullptr;

void QXResolveTimeFunctions() {
    s_pfnGetPreciseTime = platform::FindSystemTimeFunction("GetSystemTimePreciseAsFileTime");
    if (s_pfnGetPreciseTime == nullptr) {
        s_pfnGetPreciseTime = platform::FindSystemTimeFunction("GetSystemTimeAsFileTime");
    }
}

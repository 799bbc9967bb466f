// How long a wait is, and how it ends.
#ifndef QX_PLATFORM_WAITS_H
#define QX_PLATFORM_WAITS_H

#include "platform/types.h"

namespace platform {

inline constexpr u32 kInfinite = 0xFFFFFFFF;  // INFINITE

enum WaitResult : u32 {
    kWaitObject0 = 0,          // WAIT_OBJECT_0
    kWaitTimeout = 258,        // WAIT_TIMEOUT
    kWaitFailed = 0xFFFFFFFF,  // WAIT_FAILED: with the reason in the last error
};

}  // namespace platform

#endif

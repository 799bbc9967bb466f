// The counter that measures: its ticks and their rate, with a second clock where there is none.
#ifndef QX_CORE_TICKS_H
#define QX_CORE_TICKS_H

#include "platform/clocks.h"

inline i64 CurrentTick() noexcept {
    i64 ticks;
    return platform::QueryPerformanceCounter(&ticks) ? ticks : platform::GetTickCount();
}

// The ticks of CurrentTick in a second.
inline i64 TickFrequency() noexcept {
    constexpr i64 kMillisecondsPerSecond = 1000;
    i64 rate;
    return platform::QueryPerformanceFrequency(&rate) ? rate : kMillisecondsPerSecond;
}

#endif

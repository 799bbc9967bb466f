#ifndef QX_PLATFORM_WINDOWS_CLOCKS_NATIVE_H
#define QX_PLATFORM_WINDOWS_CLOCKS_NATIVE_H

#include "system_headers.h"

namespace platform {

using ::FILETIME;

// The functions live in the system's base library, which stays loaded, so the address outlives the
// reference taken here.
inline void (*FindSystemTimeFunction(const char* name) noexcept)(FILETIME*) {
    const HMODULE base = ::LoadLibraryA("kernel32.dll");
    if (base == nullptr) {
        return nullptr;
    }
    const auto found = reinterpret_cast<void (*)(FILETIME*)>(
        reinterpret_cast<void*>(::GetProcAddress(base, name)));
    ::FreeLibrary(base);
    return found;
}

inline bool QueryPerformanceCounter(i64* ticks) noexcept {
    LARGE_INTEGER count;
    const bool answered = ::QueryPerformanceCounter(&count) != 0;
    *ticks = count.QuadPart;
    return answered;
}

inline bool QueryPerformanceFrequency(i64* ticksPerSecond) noexcept {
    LARGE_INTEGER rate;
    const bool answered = ::QueryPerformanceFrequency(&rate) != 0;
    *ticksPerSecond = rate.QuadPart;
    return answered;
}

inline u32 GetTickCount() noexcept {
    return ::GetTickCount();
}

}  // namespace platform

#endif

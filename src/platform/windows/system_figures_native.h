#ifndef QX_PLATFORM_WINDOWS_SYSTEM_FIGURES_NATIVE_H
#define QX_PLATFORM_WINDOWS_SYSTEM_FIGURES_NATIVE_H

#include "system_headers.h"

namespace platform {

using ::MEMORYSTATUSEX;
using ::OSVERSIONINFOA;
using ::SYSTEM_INFO;

inline bool GlobalMemoryStatusEx(MEMORYSTATUSEX* status) noexcept {
    return ::GlobalMemoryStatusEx(status) != 0;
}

inline void GetSystemInfo(SYSTEM_INFO* info) noexcept {
    ::GetSystemInfo(info);
}

inline bool GetVersionExA(OSVERSIONINFOA* version) noexcept {
    return ::GetVersionExA(version) != 0;
}

inline bool GetUserNameW(char16_t* buffer, u32* size) noexcept {
    return ::GetUserNameW(Native(buffer), Native(size)) != 0;
}

}  // namespace platform

#endif

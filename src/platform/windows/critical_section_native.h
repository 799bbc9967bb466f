#ifndef QX_PLATFORM_WINDOWS_CRITICAL_SECTION_NATIVE_H
#define QX_PLATFORM_WINDOWS_CRITICAL_SECTION_NATIVE_H

#include "system_headers.h"

namespace platform {

using ::CRITICAL_SECTION;

inline void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept {
    ::InitializeCriticalSection(section);
}

inline void InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section,
                                                  u32 spinCount) noexcept {
    ::InitializeCriticalSectionAndSpinCount(section, spinCount);
}

inline void DeleteCriticalSection(CRITICAL_SECTION* section) noexcept {
    ::DeleteCriticalSection(section);
}

inline void EnterCriticalSection(CRITICAL_SECTION* section) noexcept {
    ::EnterCriticalSection(section);
}

inline bool TryEnterCriticalSection(CRITICAL_SECTION* section) noexcept {
    return ::TryEnterCriticalSection(section) != 0;
}

inline void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept {
    ::LeaveCriticalSection(section);
}

}  // namespace platform

#endif

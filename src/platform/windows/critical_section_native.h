#ifndef QX_PLATFORM_WINDOWS_CRITICAL_SECTION_NATIVE_H
#define QX_PLATFORM_WINDOWS_CRITICAL_SECTION_NATIVE_H

#include "system_headers.h"

namespace platform {

using ::CRITICAL_SECTION;

// The debug record, which counts the contention, is made on demand only by the systems of today.
// Older ones make it always and do not know the flag.
inline void InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section,
                                                  u32 spinCount) noexcept {
    constexpr u32 kForceDebugInfo = 0x10000000;
    if (::InitializeCriticalSectionEx(section, spinCount, kForceDebugInfo) == 0) {
        ::InitializeCriticalSectionAndSpinCount(section, spinCount);
    }
}

inline void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept {
    platform::InitializeCriticalSectionAndSpinCount(section, 0);
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

// The system's word for "no debug record" is all ones on some versions, null on others.
inline bool HasDebugRecord(const CRITICAL_SECTION* section) noexcept {
    return section->DebugInfo != nullptr &&
           section->DebugInfo !=
               reinterpret_cast<PRTL_CRITICAL_SECTION_DEBUG>(INVALID_HANDLE_VALUE);
}

inline u32 ContentionCount(const CRITICAL_SECTION* section) noexcept {
    return HasDebugRecord(section) ? section->DebugInfo->ContentionCount : 0;
}

inline void ResetContentionCount(CRITICAL_SECTION* section) noexcept {
    if (HasDebugRecord(section)) {
        section->DebugInfo->ContentionCount = 0;
    }
}

}  // namespace platform

#endif

#ifndef QX_PLATFORM_WINDOWS_CONDITIONS_NATIVE_H
#define QX_PLATFORM_WINDOWS_CONDITIONS_NATIVE_H

#include "critical_section_native.h"

namespace platform {

using ::CONDITION_VARIABLE;

inline void InitializeConditionVariable(CONDITION_VARIABLE* condition) noexcept {
    ::InitializeConditionVariable(condition);
}

inline void WakeConditionVariable(CONDITION_VARIABLE* condition) noexcept {
    ::WakeConditionVariable(condition);
}

inline void WakeAllConditionVariable(CONDITION_VARIABLE* condition) noexcept {
    ::WakeAllConditionVariable(condition);
}

inline bool SleepConditionVariableCS(CONDITION_VARIABLE* condition, CRITICAL_SECTION* section,
                                     u32 milliseconds) noexcept {
    return ::SleepConditionVariableCS(condition, section, milliseconds) != 0;
}

}  // namespace platform

#endif

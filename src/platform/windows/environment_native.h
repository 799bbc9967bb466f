#ifndef QX_PLATFORM_WINDOWS_ENVIRONMENT_NATIVE_H
#define QX_PLATFORM_WINDOWS_ENVIRONMENT_NATIVE_H

#include "system_headers.h"

namespace platform {

inline u32 ExpandEnvironmentStringsW(const char16_t* source, char16_t* target,
                                     u32 capacity) noexcept {
    return ::ExpandEnvironmentStringsW(Native(source), Native(target), capacity);
}

}  // namespace platform

#endif

#ifndef QX_PLATFORM_WINDOWS_LOCALE_NATIVE_H
#define QX_PLATFORM_WINDOWS_LOCALE_NATIVE_H

#include "system_headers.h"

namespace platform {

inline u32 GetUserDefaultLCID() noexcept {
    return ::GetUserDefaultLCID();
}

inline u32 GetACP() noexcept {
    return ::GetACP();
}

}  // namespace platform

#endif

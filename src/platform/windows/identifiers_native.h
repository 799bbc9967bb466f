#ifndef QX_PLATFORM_WINDOWS_IDENTIFIERS_NATIVE_H
#define QX_PLATFORM_WINDOWS_IDENTIFIERS_NATIVE_H

#include "system_headers.h"

#include <rpc.h>

namespace platform {

inline u32 UuidCreate(GUID* identifier) noexcept {
    return static_cast<u32>(::UuidCreate(identifier));
}

}  // namespace platform

#endif

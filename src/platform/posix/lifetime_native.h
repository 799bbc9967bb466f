#ifndef QX_PLATFORM_POSIX_LIFETIME_NATIVE_H
#define QX_PLATFORM_POSIX_LIFETIME_NATIVE_H

#include <cstdint>

#define QX_ENTRY_CALL

namespace platform {

using ModuleHandle = void*;
using EntryWord = std::uint32_t;

inline bool OtherThreadsMayRun(const void* reserved) noexcept {
    return reserved != nullptr;
}

}  // namespace platform

#endif

#ifndef QX_PLATFORM_POSIX_LOCALE_NATIVE_H
#define QX_PLATFORM_POSIX_LOCALE_NATIVE_H

#include <cstdint>

namespace platform {

inline std::uint32_t GetACP() noexcept {
    return 65001;
}

}  // namespace platform

#endif

#ifndef QX_PLATFORM_POSIX_CLOCKS_NATIVE_H
#define QX_PLATFORM_POSIX_CLOCKS_NATIVE_H

#include <cstdint>

namespace platform {

struct FILETIME {
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

}  // namespace platform

#endif

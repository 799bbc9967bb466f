#ifndef QX_PLATFORM_POSIX_LIBRARIES_NATIVE_H
#define QX_PLATFORM_POSIX_LIBRARIES_NATIVE_H

namespace platform {

using HMODULE = void*;

}  // namespace platform

#endif

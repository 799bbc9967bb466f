#ifndef QX_PLATFORM_POSIX_REGISTRY_NATIVE_H
#define QX_PLATFORM_POSIX_REGISTRY_NATIVE_H

#include <clocks_native.h>

namespace platform {

struct RegistryKey;
using HKEY = RegistryKey*;

}  // namespace platform

#endif

#ifndef QX_PLATFORM_POSIX_PROCESSOR_NATIVE_H
#define QX_PLATFORM_POSIX_PROCESSOR_NATIVE_H

#ifdef __x86_64__
#include <sys/platform/x86.h>
#endif

namespace platform {

// The C library found out when the process began. The compiler's own way would bring a constructor
// into the library.
inline bool ProcessorHasAvx2() noexcept {
#ifdef __x86_64__
    return CPU_FEATURE_ACTIVE(AVX2);
#else
    return false;
#endif
}

}  // namespace platform

#endif

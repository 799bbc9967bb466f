#include "platform/processor.h"

#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#define QX_PROCESSOR_FEATURES
// The header is one for C; not every compiler lends it that language's truth type.
#define _Bool bool
#include <sys/platform/x86.h>
#undef _Bool
#endif

namespace platform {

// The C library found out when the process began. The compiler's own way would bring a constructor
// into the library.
bool ProcessorHasAvx2() noexcept {
#ifdef QX_PROCESSOR_FEATURES
    return CPU_FEATURE_ACTIVE(AVX2);
#else
    return false;
#endif
}

}  // namespace platform

#include "platform/processor.h"

#ifdef __x86_64__
// The header is one for C; not every compiler lends it that language's truth type.
#define _Bool bool
#include <sys/platform/x86.h>
#undef _Bool
#endif

namespace platform {

// The C library found out when the process began. The compiler's own way would bring a constructor
// into the library.
bool ProcessorHasAvx2() noexcept {
#ifdef __x86_64__
    return CPU_FEATURE_ACTIVE(AVX2);
#else
    return false;
#endif
}

}  // namespace platform

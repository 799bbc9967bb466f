#include "platform/processor.h"

#include "platform/types.h"

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

// Valgrind's request 0x1001, which is part of its interface: a sequence that a processor does
// nothing at, and at which the checker puts a number into the result. So the library does not
// depend on whether the header was there when it was built.
bool RunsUnderMemoryChecker() noexcept {
#ifdef __x86_64__
    const u64 request[6] = {0x1001};
    u64 result = 0;
    asm volatile(
        "rolq $3, %%rdi; rolq $13, %%rdi; rolq $61, %%rdi; rolq $51, %%rdi; xchgq %%rbx, %%rbx"
        : "+d"(result)
        : "a"(request)
        : "cc", "memory");
    return result != 0;
#else
    return false;
#endif
}

}  // namespace platform

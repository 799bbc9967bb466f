#ifndef QX_PLATFORM_WINDOWS_TASK_ALLOCATOR_NATIVE_H
#define QX_PLATFORM_WINDOWS_TASK_ALLOCATOR_NATIVE_H

#include "system_headers.h"

#include <objbase.h>

#undef interface

namespace platform {

using ::IMalloc;

inline i32 CoGetMalloc(u32 context, IMalloc** allocator) noexcept {
    return ::CoGetMalloc(context, allocator);
}

}  // namespace platform

#endif

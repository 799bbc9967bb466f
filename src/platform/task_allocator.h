// The task allocator, which a component library in the same process shares with this one.
#ifndef QX_PLATFORM_TASK_ALLOCATOR_H
#define QX_PLATFORM_TASK_ALLOCATOR_H

#include <task_allocator_native.h>

#include "platform/types.h"

namespace platform {

// The back end defines IMalloc, a counted object with
//   void* Alloc(size): null on failure; a size of 0 gives a block that is not null
//   void* Realloc(block, size): null on failure; a size of 0 frees and gives null; a null block is
//         allocated
//   void Free(block): null is allowed
//   u32 Release(): the count that remains
// Any thread may call them.

// Stores the process's allocator with one reference for the caller. `context` is 1. The result is
// in the form of the library's result codes: not negative on success.
i32 CoGetMalloc(u32 context, IMalloc** allocator) noexcept;

}  // namespace platform

#endif

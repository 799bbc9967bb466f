// The C runtime's heap, with the size of each block on record.
#ifndef QX_PLATFORM_CRT_MEMORY_H
#define QX_PLATFORM_CRT_MEMORY_H

#include <crt_memory_native.h>

#include <cstddef>

namespace platform {

// Blocks of these functions mix with no other heap's. All are aligned as the C library's malloc
// aligns. None blocks beyond the heap's own locks, none sets the last error; failure is null.

// A size of 0 gives an empty block that is not null.
void* malloc(std::size_t size) noexcept;

// Null also when the product does not fit.
void* calloc(std::size_t count, std::size_t size) noexcept;

// A size of 0 frees a block and gives null; a null block is allocated, of size 0 too. On failure
// the old block stays.
void* realloc(void* block, std::size_t size) noexcept;

void free(void* block) noexcept;

// The size that was asked for; all ones for null.
std::size_t _msize(void* block) noexcept;

}  // namespace platform

#endif

#ifndef QX_PLATFORM_WINDOWS_CRT_MEMORY_NATIVE_H
#define QX_PLATFORM_WINDOWS_CRT_MEMORY_NATIVE_H

#include <malloc.h>

#include <cstdint>
#include <cstdlib>

namespace platform {

inline void* malloc(std::size_t size) noexcept {
    return ::malloc(size);
}

inline void* calloc(std::size_t count, std::size_t size) noexcept {
    return ::calloc(count, size);
}

inline void* realloc(void* block, std::size_t size) noexcept {
    return ::realloc(block, size);
}

inline void free(void* block) noexcept {
    ::free(block);
}

// The runtime treats null as a fault of the program.
inline std::size_t _msize(void* block) noexcept {
    return block != nullptr ? ::_msize(block) : SIZE_MAX;
}

}  // namespace platform

#endif

// The C library's heap reports usable sizes, which are larger than what was asked for, so each
// block carries its exact size in front.
#ifndef QX_PLATFORM_POSIX_CRT_MEMORY_NATIVE_H
#define QX_PLATFORM_POSIX_CRT_MEMORY_NATIVE_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace platform {

struct alignas(alignof(std::max_align_t)) BlockHeader {
    std::size_t size;
};

constexpr std::size_t kLargestBlock = SIZE_MAX - sizeof(BlockHeader);

inline BlockHeader* HeaderOf(void* block) noexcept {
    return static_cast<BlockHeader*>(block) - 1;
}

inline void* BlockBehind(void* raw, std::size_t size) noexcept {
    if (raw == nullptr) {
        return nullptr;
    }
    auto* header = static_cast<BlockHeader*>(raw);
    header->size = size;
    return header + 1;
}

inline void* malloc(std::size_t size) noexcept {
    if (size > kLargestBlock) {
        return nullptr;
    }
    return BlockBehind(std::malloc(sizeof(BlockHeader) + size), size);
}

inline void free(void* block) noexcept {
    if (block != nullptr) {
        std::free(HeaderOf(block));
    }
}

inline void* calloc(std::size_t count, std::size_t size) noexcept {
    std::size_t total = 0;
    if (__builtin_mul_overflow(count, size, &total) || total > kLargestBlock) {
        return nullptr;
    }
    return BlockBehind(std::calloc(1, sizeof(BlockHeader) + total), total);
}

inline void* realloc(void* block, std::size_t size) noexcept {
    if (block == nullptr) {
        return platform::malloc(size);
    }
    if (size == 0) {
        platform::free(block);
        return nullptr;
    }
    if (size > kLargestBlock) {
        return nullptr;
    }
    return BlockBehind(std::realloc(HeaderOf(block), sizeof(BlockHeader) + size), size);
}

inline std::size_t _msize(void* block) noexcept {
    return block != nullptr ? HeaderOf(block)->size : SIZE_MAX;
}

}  // namespace platform

#endif

// The C library's heap reports usable sizes, which are larger than what was asked for, so each
// block carries its exact size in front.
#include "platform/crt_memory.h"

#include <cstdint>
#include <cstdlib>

namespace platform {
namespace {

struct alignas(alignof(std::max_align_t)) BlockHeader {
    std::size_t size;
};

constexpr std::size_t kLargestBlock = SIZE_MAX - sizeof(BlockHeader);

BlockHeader* HeaderOf(void* block) noexcept {
    return static_cast<BlockHeader*>(block) - 1;
}

void* BlockBehind(void* raw, std::size_t size) noexcept {
    if (raw == nullptr) {
        return nullptr;
    }
    auto* header = static_cast<BlockHeader*>(raw);
    header->size = size;
    return header + 1;
}

}  // namespace

void* malloc(std::size_t size) noexcept {
    if (size > kLargestBlock) {
        return nullptr;
    }
    return BlockBehind(std::malloc(sizeof(BlockHeader) + size), size);
}

void* calloc(std::size_t count, std::size_t size) noexcept {
    std::size_t total = 0;
    if (__builtin_mul_overflow(count, size, &total) || total > kLargestBlock) {
        return nullptr;
    }
    return BlockBehind(std::calloc(1, sizeof(BlockHeader) + total), total);
}

void* realloc(void* block, std::size_t size) noexcept {
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

void free(void* block) noexcept {
    if (block != nullptr) {
        std::free(HeaderOf(block));
    }
}

std::size_t _msize(void* block) noexcept {
    return block != nullptr ? HeaderOf(block)->size : SIZE_MAX;
}

}  // namespace platform

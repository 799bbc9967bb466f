#include <qxcore/memory.h>

#include <cstring>

#include "platform/crt_memory.h"

namespace {

constexpr std::size_t kUnknownSize = SIZE_MAX;

QXResult ResultOfAllocation(const void* block) {
    return block != nullptr ? QX_S_OK : QX_E_OUTOFMEMORY;
}

}  // namespace

QXResult QXMalloc(size_t size, void** out) {
    *out = platform::malloc(size);
    return ResultOfAllocation(*out);
}

QXResult QXCalloc(size_t count, size_t size, void** out) {
    *out = platform::calloc(count, size);
    return ResultOfAllocation(*out);
}

QXResult QXRealloc(void** block, size_t size) {
    void* const moved = platform::realloc(*block, size);
    if (moved == nullptr && size != 0) {
        return QX_E_OUTOFMEMORY;
    }
    *block = moved;
    return QX_S_OK;
}

QXResult QXRecalloc(void** block, size_t size) {
    if (*block == nullptr) {
        return QXCalloc(size, 1, block);
    }
    if (size == 0) {
        // The pointer stays as it is, unlike in QXRealloc: kept on purpose.
        platform::free(*block);
        return QX_S_OK;
    }
    const std::size_t oldSize = platform::_msize(*block);
    if (oldSize == 0 || oldSize == kUnknownSize) {
        return QX_E_POINTER;
    }
    const QXResult result = QXRealloc(block, size);
    if (QX_FAILED(result)) {
        return result;
    }
    const std::size_t newSize = platform::_msize(*block);
    if (newSize != kUnknownSize && newSize > oldSize) {
        std::memset(static_cast<char*>(*block) + oldSize, 0, newSize - oldSize);
    }
    return QX_S_OK;
}

QXResult QXFree(void* block) {
    platform::free(block);
    return QX_S_OK;
}

size_t QXMallocSize(void* block) {
    const std::size_t size = platform::_msize(block);
    return size != kUnknownSize ? size : 0;
}

size_t QXGetAlignedSize(size_t size) {
    return (size + 7) & ~static_cast<size_t>(7);
}

#include <qxcore/component.h>
#include <qxcore/memory.h>

#include "transcript/calls.h"

namespace {

constexpr size_t kTooMuch = SIZE_MAX / 16;

// A block, and how many of its bytes are known.
struct Block {
    void* memory = nullptr;
    size_t size = 0;

    void Know(size_t bytes) { size = memory != nullptr ? bytes : 0; }

    // Sets what was not known before.
    void Fill(size_t bytes) {
        const size_t known = size;
        Know(bytes);
        std::fill_n(static_cast<char*>(memory) + known, size > known ? size - known : 0,
                    static_cast<char>('a' + bytes % 26));
    }
};

struct BlockInUse {
    Block* block;
    Block* Get() const { return block; }
    void Show(Line& line, const char* what) const {
        line.Handle(what, block->memory).Bytes("bytes", block->memory, block->size);
    }
};

// What is too much for the heap is no size of component memory.
template <typename Size>
Size AnySize(Random& random) {
    const bool tooMuch = sizeof(Size) == sizeof kTooMuch && random.OneIn(10);
    return static_cast<Size>(tooMuch ? kTooMuch : random.Below(40));
}

size_t Count(Random& random) {
    return random.OneIn(10) ? kTooMuch : random.Below(8);
}

// Some blocks of the heap or of component memory.
template <auto kRelease>
struct Blocks {
    ~Blocks() {
        for (const Block& block : all) {
            kRelease(block.memory);
        }
    }
    Block all[4];
};

template <auto kRelease>
auto AnyBlock(const std::shared_ptr<Blocks<kRelease>>& blocks) {
    return [=](Random& random) { return BlockInUse{&blocks->all[random.Below(4)]}; };
}

template <auto kRelease>
QXResult Free(Block* block) {
    return kRelease(std::exchange(*block, Block()).memory);
}

template <auto kAllocate, auto kRelease, typename Size>
QXResult Malloc(Block* block, Size size) {
    Free<kRelease>(block);
    const QXResult result = kAllocate(size, &block->memory);
    block->Fill(size);
    return result;
}

template <auto kResize, typename Size>
QXResult Realloc(Block* block, Size size) {
    const QXResult result = kResize(&block->memory, size);
    if (QX_SUCCEEDED(result)) {
        block->Fill(size);
    }
    return result;
}

QXResult Calloc(Block* block, size_t count, size_t size) {
    Free<QXFree>(block);
    const QXResult result = QXCalloc(count, size, &block->memory);
    block->Know(count * size);
    return result;
}

QXResult Recalloc(Block* block, size_t size) {
    const bool frees = size == 0 && block->memory != nullptr;
    const QXResult result = QXRecalloc(&block->memory, size);
    if (frees) {
        *block = {};  // the pointer was left as it was
    } else if (QX_SUCCEEDED(result)) {
        block->Know(size);
    }
    return result;
}

size_t SizeOf(Block* block) {
    return QXMallocSize(block->memory);
}

}  // namespace

Calls MemoryCalls() {
    const auto heap = AnyBlock(std::make_shared<Blocks<QXFree>>());
    const auto component = AnyBlock(std::make_shared<Blocks<QXComFree>>());
    constexpr auto kSize = AnySize<size_t>;
    constexpr auto kSize32 = AnySize<uint32_t>;
    return {
        {"QXMalloc", Row(Malloc<QXMalloc, QXFree, size_t>, heap, kSize)},
        {"QXCalloc", Row(Calloc, heap, Count, Within<0, 7>)},
        {"QXRealloc", Row(Realloc<QXRealloc, size_t>, heap, kSize)},
        {"QXRecalloc", Row(Recalloc, heap, kSize)},
        {"QXMallocSize", Row(SizeOf, heap)},
        {"QXFree", Row(Free<QXFree>, heap)},
        {"QXComMalloc", Row(Malloc<QXComMalloc, QXComFree, uint32_t>, component, kSize32)},
        {"QXComRealloc", Row(Realloc<QXComRealloc, uint32_t>, component, kSize32)},
        {"QXComFree", Row(Free<QXComFree>, component)},
    };
}

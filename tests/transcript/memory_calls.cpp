#include <qxcore/component.h>
#include <qxcore/memory.h>

#include "transcript/calls.h"

namespace {

constexpr size_t kTooMuch = SIZE_MAX / 16;

// A block, and how many of its bytes are known.
struct Block {
    void* memory = nullptr;
    size_t size = 0;

    // Bytes that were not known before are set.
    void Fill(size_t bytes) {
        if (memory != nullptr && bytes > size) {
            std::memset(static_cast<char*>(memory) + size, static_cast<int>('a' + bytes % 26),
                        bytes - size);
        }
        Know(bytes);
    }
    void Know(size_t bytes) { size = memory != nullptr ? bytes : 0; }
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

// Blocks of the heap or of component memory, and the functions of either.
template <typename Size>
struct Blocks {
    using Allocate = QXResult (*)(Size, void**);
    using Resize = QXResult (*)(void**, Size);

    Blocks(Allocate allocateOne, Resize resizeOne, QXResult (*releaseOne)(void*))
        : allocate(allocateOne), resize(resizeOne), release(releaseOne) {}
    ~Blocks() {
        for (Block& block : blocks) {
            Free(&block);
        }
    }

    QXResult Free(Block* block) { return release(std::exchange(*block, Block()).memory); }
    QXResult Malloc(Block* block, Size size) {
        Free(block);
        const QXResult result = allocate(size, &block->memory);
        block->Fill(size);
        return result;
    }
    QXResult Realloc(Block* block, Size size) {
        const QXResult result = resize(&block->memory, size);
        if (QX_SUCCEEDED(result)) {
            block->Fill(size);
        }
        return result;
    }

    const Allocate allocate;
    const Resize resize;
    QXResult (*const release)(void*);
    Block blocks[4];
};

QXResult Calloc(Block* block, size_t count, size_t size) {
    QXFree(block->memory);
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

template <typename Size>
auto AnyBlock(std::shared_ptr<Blocks<Size>> blocks) {
    return [=](Random& random) { return BlockInUse{&blocks->blocks[random.Below(4)]}; };
}

// A call of a member that works on any of the blocks.
template <typename Size, typename... Rest, typename... Kinds>
auto On(std::shared_ptr<Blocks<Size>> blocks, QXResult (Blocks<Size>::*make)(Block*, Rest...),
        Kinds... kinds) {
    return Row([=](Block* block, Rest... rest) { return ((*blocks).*make)(block, rest...); },
               AnyBlock(blocks), kinds...);
}

}  // namespace

Calls MemoryCalls() {
    using Heap = Blocks<size_t>;
    using Component = Blocks<uint32_t>;
    const auto heap = std::make_shared<Heap>(QXMalloc, QXRealloc, QXFree);
    const auto component = std::make_shared<Component>(QXComMalloc, QXComRealloc, QXComFree);
    const auto sizeOf = [](Block* block) { return QXMallocSize(block->memory); };
    return {
        {"QXMalloc", On(heap, &Heap::Malloc, AnySize<size_t>)},
        {"QXCalloc", Row(Calloc, AnyBlock(heap), Count, Within<0, 7>)},
        {"QXRealloc", On(heap, &Heap::Realloc, AnySize<size_t>)},
        {"QXRecalloc", Row(Recalloc, AnyBlock(heap), AnySize<size_t>)},
        {"QXMallocSize", Row(sizeOf, AnyBlock(heap))},
        {"QXFree", On(heap, &Heap::Free)},
        {"QXComMalloc", On(component, &Component::Malloc, AnySize<uint32_t>)},
        {"QXComRealloc", On(component, &Component::Realloc, AnySize<uint32_t>)},
        {"QXComFree", On(component, &Component::Free)},
    };
}

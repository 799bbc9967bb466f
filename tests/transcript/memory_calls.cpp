#include <qxcore/component.h>
#include <qxcore/memory.h>

#include <cstring>

#include "transcript/call_lists.h"

namespace {

constexpr size_t kTooMuch = SIZE_MAX / 16;

// A block and what the transcript wrote to it.
struct Block {
    void* memory = nullptr;
    size_t size = 0;
};

// Known bytes from the beginning on.
void Fill(Block* block, size_t size) {
    block->size = block->memory != nullptr ? size : 0;
    if (block->size > 0) {
        std::memset(block->memory, static_cast<int>('a' + size % 26), size);
    }
}

void ShowBytes(const Block& block, size_t size, Line& line) {
    line.Bytes("bytes", block.memory, block.memory != nullptr ? size : 0);
}

// Blocks of the heap or of component memory, by their functions.
template <typename Size>
class Blocks : public Unshared {
  public:
    using Allocate = QXResult (*)(Size, void**);
    using Resize = QXResult (*)(void**, Size);

    Blocks(Allocate allocate, Resize resize, QXResult (*release)(void*))
        : m_allocate(allocate), m_resize(resize), m_release(release) {}
    ~Blocks() {
        for (const Block& block : m_blocks) {
            m_release(block.memory);
        }
    }

    void Malloc(Random& random, Line& line) {
        Block* const block = Vacant(random, line);
        const Size size = AnySize(random);
        line.Add("size", size).Result(m_allocate(size, &block->memory));
        line.Handle("memory", block->memory);
        Fill(block, size);
    }

    void Calloc(Random& random, Line& line) {
        Block* const block = Vacant(random, line);
        const size_t count = random.OneIn(10) ? kTooMuch : random.Below(8);
        const size_t size = random.Below(8);
        line.Add("count", count).Add("size", size).Result(QXCalloc(count, size, &block->memory));
        line.Handle("memory", block->memory);
        block->size = block->memory != nullptr ? count * size : 0;
        ShowBytes(*block, block->size, line);
    }

    void Realloc(Random& random, Line& line) {
        Block* const block = Any(random, line);
        const Size size = AnySize(random);
        const QXResult result = m_resize(&block->memory, size);
        line.Add("size", size).Result(result).Handle("memory", block->memory);
        if (QX_SUCCEEDED(result)) {
            ShowBytes(*block, std::min<size_t>(size, block->size), line);
            Fill(block, size);
        }
    }

    void Recalloc(Random& random, Line& line) {
        Block* const block = Any(random, line);
        const size_t size = AnySize(random);
        const bool frees = size == 0 && block->memory != nullptr;
        const QXResult result = QXRecalloc(&block->memory, size);
        line.Add("size", size).Result(result);
        if (frees) {
            *block = {};  // the pointer was left as it was
        } else if (QX_SUCCEEDED(result)) {
            block->size = size;
            ShowBytes(*block, size, line);
        }
    }

    void SizeOf(Random& random, Line& line) {
        line.Add("->", QXMallocSize(Any(random, line)->memory));
    }

    void Free(Random& random, Line& line) {
        Block* const block = Any(random, line);
        line.Result(m_release(block->memory));
        *block = {};
    }

  private:
    Block* Any(Random& random, Line& line) {
        const uint32_t index = random.Below(std::size(m_blocks));
        line.Add("block", index);
        return &m_blocks[index];
    }

    // A place for a new block.
    Block* Vacant(Random& random, Line& line) {
        Block* const block = Any(random, line);
        m_release(block->memory);
        *block = {};
        return block;
    }

    // What is too much for the heap is no size of component memory.
    static Size AnySize(Random& random) {
        const bool tooMuch = sizeof(Size) == sizeof kTooMuch && random.OneIn(10);
        return static_cast<Size>(tooMuch ? kTooMuch : random.Below(40));
    }

    const Allocate m_allocate;
    const Resize m_resize;
    QXResult (*const m_release)(void*);
    Block m_blocks[4];
};

}  // namespace

std::vector<Call> MemoryCalls() {
    using Heap = Blocks<size_t>;
    using Component = Blocks<uint32_t>;
    const auto heap = std::make_shared<Heap>(QXMalloc, QXRealloc, QXFree);
    const auto component = std::make_shared<Component>(QXComMalloc, QXComRealloc, QXComFree);
    return {
        {"QXMalloc", Member(heap, &Heap::Malloc)},
        {"QXCalloc", Member(heap, &Heap::Calloc)},
        {"QXRealloc", Member(heap, &Heap::Realloc)},
        {"QXRecalloc", Member(heap, &Heap::Recalloc)},
        {"QXMallocSize", Member(heap, &Heap::SizeOf)},
        {"QXFree", Member(heap, &Heap::Free)},
        {"QXComMalloc", Member(component, &Component::Malloc)},
        {"QXComRealloc", Member(component, &Component::Realloc)},
        {"QXComFree", Member(component, &Component::Free)},
    };
}

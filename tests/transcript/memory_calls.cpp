#include <qxcore/component.h>
#include <qxcore/memory.h>

#include <cstring>

#include "transcript/call_lists.h"

namespace {

// A block and what the transcript wrote to it.
struct Block {
    void* memory = nullptr;
    size_t size = 0;
};

// Blocks of the heap or of component memory, by their functions.
class Blocks {
  public:
    explicit Blocks(QXResult (*release)(void*)) : m_release(release) {}
    ~Blocks() {
        for (const Block& block : m_blocks) {
            m_release(block.memory);
        }
    }
    Blocks(const Blocks&) = delete;
    Blocks& operator=(const Blocks&) = delete;

    Block* Any(Random& random, Line& line) {
        const uint32_t index = random.Below(kBlocks);
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

    void Free(Random& random, Line& line) {
        Block* const block = Any(random, line);
        line.Result(m_release(block->memory));
        *block = {};
    }

  private:
    static constexpr size_t kBlocks = 4;

    Block m_blocks[kBlocks];
    QXResult (*m_release)(void*);
};

constexpr size_t kTooMuch = SIZE_MAX / 16;

// What a block's size became: known bytes from there on.
void Fill(Block* block, size_t size) {
    if (size > 0) {
        std::memset(block->memory, static_cast<int>('a' + size % 26), size);
    }
    block->size = size;
}

// The bytes that stayed, and those that were added if they are known.
void ShowBytes(const Block& block, size_t size, Line& line) {
    line.Bytes("bytes", block.memory, block.memory != nullptr ? size : 0);
}

class HeapBlocks : public Blocks {
  public:
    HeapBlocks() : Blocks(QXFree) {}

    void Malloc(Random& random, Line& line) {
        Block* const block = Vacant(random, line);
        const size_t size = AnySize(random);
        line.Add("size", size).Result(QXMalloc(size, &block->memory));
        line.Handle("memory", block->memory);
        Fill(block, block->memory != nullptr ? size : 0);
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
        const size_t size = AnySize(random);
        const QXResult result = QXRealloc(&block->memory, size);
        line.Add("size", size).Result(result).Handle("memory", block->memory);
        if (QX_SUCCEEDED(result)) {
            ShowBytes(*block, std::min(size, block->size), line);
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

    void Size(Random& random, Line& line) {
        line.Add("->", QXMallocSize(Any(random, line)->memory));
    }

  private:
    static size_t AnySize(Random& random) { return random.OneIn(10) ? kTooMuch : random.Below(40); }
};

class ComponentBlocks : public Blocks {
  public:
    ComponentBlocks() : Blocks(QXComFree) {}

    void Malloc(Random& random, Line& line) {
        Block* const block = Vacant(random, line);
        const uint32_t size = random.Below(40);
        line.Add("size", size).Result(QXComMalloc(size, &block->memory));
        line.Handle("memory", block->memory);
        Fill(block, size);
    }

    void Realloc(Random& random, Line& line) {
        Block* const block = Any(random, line);
        const uint32_t size = random.Below(40);
        const QXResult result = QXComRealloc(&block->memory, size);
        line.Add("size", size).Result(result).Handle("memory", block->memory);
        ShowBytes(*block, std::min<size_t>(size, block->size), line);
        Fill(block, block->memory != nullptr ? size : 0);
    }
};

}  // namespace

std::vector<Call> MemoryCalls() {
    const auto heap = std::make_shared<HeapBlocks>();
    const auto component = std::make_shared<ComponentBlocks>();
    return {
        {"QXMalloc", Member(heap, &HeapBlocks::Malloc)},
        {"QXCalloc", Member(heap, &HeapBlocks::Calloc)},
        {"QXRealloc", Member(heap, &HeapBlocks::Realloc)},
        {"QXRecalloc", Member(heap, &HeapBlocks::Recalloc)},
        {"QXMallocSize", Member(heap, &HeapBlocks::Size)},
        {"QXFree", Member<Blocks>(heap, &Blocks::Free)},
        {"QXComMalloc", Member(component, &ComponentBlocks::Malloc)},
        {"QXComRealloc", Member(component, &ComponentBlocks::Realloc)},
        {"QXComFree", Member<Blocks>(component, &Blocks::Free)},
    };
}

// Blocks of memory beside the C library's, and beside what a record of the exact size costs at the
// least: the same by hand, in functions that are called.
#include <benchmark/benchmark.h>
#include <qxcore/component.h>
#include <qxcore/memory.h>

#include <cstdlib>

namespace {

constexpr std::size_t kRecord = 16;

[[gnu::noinline]] void* AllocateWithRecord(std::size_t size) {
    auto* const block = static_cast<std::size_t*>(std::malloc(kRecord + size));
    *block = size;
    return reinterpret_cast<char*>(block) + kRecord;
}

[[gnu::noinline]] void FreeWithRecord(void* block) {
    std::free(static_cast<char*>(block) - kRecord);
}

struct CLibrary {
    static void* Allocate(std::size_t size) { return std::malloc(size); }
    static void* AllocateZeros(std::size_t size) { return std::calloc(1, size); }
    static void* Reallocate(void* block, std::size_t size) { return std::realloc(block, size); }
    static void Free(void* block) { std::free(block); }
};

struct RecordByHand {
    static void* Allocate(std::size_t size) { return AllocateWithRecord(size); }
    static void Free(void* block) { FreeWithRecord(block); }
};

struct Library {
    static void* Allocate(std::size_t size) {
        void* block;
        QXMalloc(size, &block);
        return block;
    }
    static void* AllocateZeros(std::size_t size) {
        void* block;
        QXCalloc(1, size, &block);
        return block;
    }
    static void* Reallocate(void* block, std::size_t size) {
        QXRealloc(&block, size);
        return block;
    }
    static void Free(void* block) { QXFree(block); }
};

struct TaskAllocator {
    static void* Allocate(std::size_t size) {
        void* block;
        QXComMalloc(static_cast<uint32_t>(size), &block);
        return block;
    }
    static void Free(void* block) { QXComFree(block); }
};

template <typename Heap>
void Allocate(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        void* const block = Heap::Allocate(size);
        benchmark::DoNotOptimize(block);
        Heap::Free(block);
    }
}
BENCHMARK(Allocate<CLibrary>)->Arg(64)->Arg(4096);
BENCHMARK(Allocate<RecordByHand>)->Arg(64)->Arg(4096);
BENCHMARK(Allocate<Library>)->Arg(64)->Arg(4096);
BENCHMARK(Allocate<TaskAllocator>)->Arg(64)->Arg(4096);

template <typename Heap>
void AllocateZeros(benchmark::State& state) {
    const auto size = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        void* const block = Heap::AllocateZeros(size);
        benchmark::DoNotOptimize(block);
        Heap::Free(block);
    }
}
BENCHMARK(AllocateZeros<CLibrary>)->Arg(64)->Arg(4096);
BENCHMARK(AllocateZeros<Library>)->Arg(64)->Arg(4096);

// A block that grows and shrinks within what it has.
template <typename Heap>
void Reallocate(benchmark::State& state) {
    void* block = Heap::Allocate(64);
    for (auto _ : state) {
        block = Heap::Reallocate(block, 56);
        block = Heap::Reallocate(block, 64);
        benchmark::DoNotOptimize(block);
    }
    Heap::Free(block);
}
BENCHMARK(Reallocate<CLibrary>);
BENCHMARK(Reallocate<Library>);

}  // namespace

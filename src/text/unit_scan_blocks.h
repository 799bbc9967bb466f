// Blocks of units, as wide as the source that includes this is compiled for.
#ifndef QX_TEXT_UNIT_SCAN_BLOCKS_H
#define QX_TEXT_UNIT_SCAN_BLOCKS_H

#include <immintrin.h>

#include "text/unit_scan.h"

namespace unit_scan {
namespace {

#ifdef __AVX2__
using Raw = __m256i;
#else
using Raw = __m128i;
#endif
constexpr std::size_t kBlockSize = sizeof(Raw);
constexpr unsigned kFullMask = ~0u >> (32 - kBlockSize);

template <typename Unit>
struct BlockOf {
    typedef Plain<Unit> Type __attribute__((vector_size(kBlockSize)));
    typedef Type Unaligned __attribute__((aligned(1), may_alias));
};
template <typename Unit>
using Block = typename BlockOf<Unit>::Type;
template <typename Unit>
using UnalignedBlock = typename BlockOf<Unit>::Unaligned;

unsigned Lead(const void* text) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(text) % kBlockSize);
}

// Units that stand across the lanes of an aligned block are taken alone.
template <typename Unit>
bool IsAligned(const Unit* text) {
    return reinterpret_cast<std::uintptr_t>(text) % sizeof(Unit) == 0;
}

template <typename Unit>
Plain<Unit> LoadUnit(const Unit* text) {
    Plain<Unit> unit;
    __builtin_memcpy(&unit, text, sizeof unit);
    return unit;
}

template <typename Unit>
Block<Unit> LoadAligned(const char* block) {
    return (Block<Unit>)*reinterpret_cast<const Raw*>(block);
}

template <typename Unit>
Block<Unit> Load(const Unit* text) {
    return *reinterpret_cast<const UnalignedBlock<Unit>*>(text);
}

template <typename Unit>
void Store(Unit* text, Block<Unit> units) {
    *reinterpret_cast<UnalignedBlock<Unit>*>(text) = units;
}

// A bit for each byte, set where its lane is.
template <typename Lanes>
unsigned MaskOf(Lanes lanes) {
#ifdef __AVX2__
    return static_cast<unsigned>(_mm256_movemask_epi8((Raw)lanes));
#else
    return static_cast<unsigned>(_mm_movemask_epi8((Raw)lanes));
#endif
}

std::size_t LowestBit(unsigned mask) {
    return static_cast<unsigned>(__builtin_ctz(mask));
}

std::size_t HighestBit(unsigned mask) {
    return 31 - static_cast<unsigned>(__builtin_clz(mask));
}

// How much is looked at, window by window, after one look at where the page ends.
// Five windows take in a text of some sixty wide units with its terminator; more of them gain
// nothing.
constexpr std::size_t kGroupSize = 5 * kBlockSize;

// Whether so many bytes from an address on may reach into the next page.
bool IsNearPageEnd(std::uintptr_t address, std::size_t size) {
    constexpr std::size_t kSmallestPage = 4096;
    return address % kSmallestPage > kSmallestPage - size;
}

template <typename Unit>
std::uintptr_t AddressOf(const Unit* text) {
    return reinterpret_cast<std::uintptr_t>(text);
}

// The offset in bytes of the first hit in a group, or the group's size. The function gives the hits
// in the window at an offset.
template <std::size_t kOffset = 0, typename HitsAt>
[[gnu::always_inline]] inline std::size_t FindInGroup(HitsAt hitsAt) {
    if constexpr (kOffset < kGroupSize) {
        if (const unsigned hits = hitsAt(kOffset); hits != 0) [[unlikely]] {
            return kOffset + LowestBit(hits);
        }
        return FindInGroup<kOffset + kBlockSize>(hitsAt);
    }
    return kGroupSize;
}

}  // namespace
}  // namespace unit_scan

#endif

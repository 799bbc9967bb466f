// The loops of unit_scan.h, for a source that defines their table. How wide a block is depends on
// what that source is compiled for.
//
// A block is loaded only from a multiple of its size, and only when at least one of its bytes belongs
// to the text; a load at any other address lies within the text. So no load touches a page that the
// text does not, and memory checkers that know partial loads stay quiet. Bytes around the text never
// decide a result. Under a sanitizer, and where there are no such blocks, units are loaded alone.
//
// Everything is local to the source: a copy of a shared function that is compiled for a newer
// processor must not stand in for the plain one.
#ifndef QX_TEXT_UNIT_SCAN_LOOPS_H
#define QX_TEXT_UNIT_SCAN_LOOPS_H

#include "text/unit_scan.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QX_SCAN_UNITS_ALONE
#endif
#endif
#if !defined(__SSE2__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QX_SCAN_UNITS_ALONE
#endif
#ifndef QX_SCAN_UNITS_ALONE
#include <immintrin.h>
#endif

namespace unit_scan {
namespace {

constexpr std::size_t Smaller(std::size_t first, std::size_t second) {
    return first < second ? first : second;
}

// The tests take a unit or a block, one or two of them, and give a truth value, or a block whose
// lanes are all ones where the test holds.

struct IsEnd {
    template <typename Value>
    auto operator()(Value value) const {
        return value == Value{};
    }
};

struct IsEndOrUnit {
    u16 m_unit;

    template <typename Value>
    auto operator()(Value value) const {
        return (value == Value{}) | (value == m_unit);
    }
};

template <typename Unit>
struct IsEndOrNotAscii {
    template <typename Value>
    auto operator()(Value value) const {
        constexpr Plain<Unit> kOne = 1;
        constexpr Plain<Unit> kLast = 0x7E;
        return static_cast<Value>(value - kOne) > Value{} + kLast;
    }
};

struct Differ {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        return (first == Value{}) | (first != second);
    }
};

struct DifferAsLower {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        constexpr FoldAscii<char16_t, 'A'> kFold;
        return Differ()(kFold(first), kFold(second));
    }
};

struct DifferAsUpperOrNotAscii {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        constexpr FoldAscii<char, 'a'> kFold;
        constexpr u8 kLast = 0x7F;
        return Differ()(kFold(first), kFold(second)) |
               (static_cast<Value>(first | second) > Value{} + kLast);
    }
};

#ifdef QX_SCAN_UNITS_ALONE

template <typename Unit, typename Test>
std::size_t FindFirst(const Unit* text, std::size_t limit, Test test) {
    std::size_t index = 0;
    while (index < limit && !test(static_cast<Plain<Unit>>(text[index]))) {
        ++index;
    }
    return index;
}

const char16_t* FindLastUnit(const char16_t* text, char16_t unit) {
    const char16_t* found = nullptr;
    for (;; ++text) {
        found = *text == unit ? text : found;
        if (*text == 0) {
            return found;
        }
    }
}

template <typename Unit, typename Test>
std::size_t FindPair(const Unit* first, const Unit* second, std::size_t limit, Test test) {
    std::size_t index = 0;
    while (index < limit && !test(static_cast<Plain<Unit>>(first[index]),
                                  static_cast<Plain<Unit>>(second[index]))) {
        ++index;
    }
    return index;
}

#else

#ifdef __AVX2__
using Raw = __m256i;
#else
using Raw = __m128i;
#endif
constexpr std::size_t kBlockSize = sizeof(Raw);

template <typename Unit>
struct BlockOf {
    typedef Plain<Unit> Type __attribute__((vector_size(kBlockSize)));
};
template <typename Unit>
using Block = typename BlockOf<Unit>::Type;

unsigned Lead(const void* text) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(text) % kBlockSize);
}

template <typename Unit>
Block<Unit> Load(const char* block) {
    return (Block<Unit>)*reinterpret_cast<const Raw*>(block);
}

template <typename Unit>
Block<Unit> LoadUnaligned(const char* bytes) {
    Block<Unit> units;
    __builtin_memcpy(&units, bytes, sizeof units);
    return units;
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
    return static_cast<std::size_t>(__builtin_ctz(mask));
}

// The index of the first unit that passes the test, or the limit. A test holds for the terminator.
template <typename Unit, typename Test>
std::size_t FindFirst(const Unit* text, std::size_t limit, Test test) {
    if (limit == 0) {
        return 0;
    }
    const unsigned lead = Lead(text);
    const char* block = reinterpret_cast<const char*>(text) - lead;
    unsigned mask = MaskOf(test(Load<Unit>(block))) >> lead;
    if (mask != 0) {
        return Smaller(limit, LowestBit(mask) / sizeof(Unit));
    }
    for (std::size_t index = (kBlockSize - lead) / sizeof(Unit); index < limit;
         index += kBlockSize / sizeof(Unit)) {
        block += kBlockSize;
        mask = MaskOf(test(Load<Unit>(block)));
        if (mask != 0) {
            return Smaller(limit, index + LowestBit(mask) / sizeof(Unit));
        }
    }
    return limit;
}

const char16_t* FindLastUnit(const char16_t* text, char16_t unit) {
    const char* found = nullptr;
    const unsigned lead = Lead(text);
    const char* block = reinterpret_cast<const char*>(text) - lead;
    for (unsigned valid = ~0u << lead;; valid = ~0u, block += kBlockSize) {
        const Block<char16_t> units = Load<char16_t>(block);
        const unsigned ends = MaskOf(units == Block<char16_t>{}) & valid;
        // Up to both bytes of the terminator.
        const unsigned inside = ends == 0 ? valid : valid & ((ends ^ (ends - 1)) * 2 + 1);
        const unsigned hits = MaskOf(units == static_cast<u16>(unit)) & inside;
        if (hits != 0) {
            found = block + (31 - __builtin_clz(hits)) - 1;
        }
        if (ends != 0) {
            return reinterpret_cast<const char16_t*>(found);
        }
    }
}

// Blocks of one text, the one that begins earlier in its block, against windows of the other: the
// units that stand at the same indexes.
template <typename Unit>
struct Windows {
    const char* m_blocks;
    unsigned m_shift;
    std::size_t m_end;  // bytes from the first window to the limit

    // Loads a window without a look at what follows the text in it: by its blocks.
    Block<Unit> Join(std::size_t at, bool isLast) const {
        Block<Unit> both[2] = {Load<Unit>(m_blocks + at), {}};
        if (!isLast) {
            both[1] = Load<Unit>(m_blocks + at + kBlockSize);
        }
        return LoadUnaligned<Unit>(reinterpret_cast<const char*>(both) + m_shift);
    }

    bool EndsIn(std::size_t at, unsigned ignoredBytes) const {
        return (MaskOf(IsEnd()(Load<Unit>(m_blocks + at))) >> ignoredBytes) != 0;
    }
};

template <typename Unit, typename Test>
std::size_t FindPair(const Unit* first, const Unit* second, std::size_t limit, Test test) {
    if (limit == 0) {
        return 0;
    }
    if (Lead(second) < Lead(first)) {
        const Unit* const third = first;
        first = second;
        second = third;
    }
    const unsigned lead = Lead(first);
    const unsigned shift = Lead(second) - lead;
    const char* const blocks = reinterpret_cast<const char*>(first) - lead;
    const std::size_t end = limit < kUnlimited / 4 ? limit * sizeof(Unit) + lead : kUnlimited;
    const Windows<Unit> windows{reinterpret_cast<const char*>(second) - lead - shift, shift, end};
    unsigned valid = ~0u << lead;
    bool isLast = windows.EndsIn(0, lead + shift) || kBlockSize - shift >= end;
    for (std::size_t at = 0;; at += kBlockSize) {
        const bool endsNext = !isLast && (windows.EndsIn(at + kBlockSize, 0) ||
                                          at + 2 * kBlockSize - shift >= end);
        const Block<Unit> window = isLast || endsNext
                                       ? windows.Join(at, isLast)
                                       : LoadUnaligned<Unit>(windows.m_blocks + at + shift);
        const unsigned mask = MaskOf(test(Load<Unit>(blocks + at), window)) & valid;
        if (mask != 0) {
            return Smaller(limit, (at + LowestBit(mask) - lead) / sizeof(Unit));
        }
        if (isLast) {
            return limit;
        }
        isLast = endsNext;
        valid = ~0u;
    }
}

#endif

constexpr Loops kLoops = {
    .findEnd = [](const char16_t* text, std::size_t limit) {
        return FindFirst(text, limit, IsEnd());
    },
    .findUnitOrEnd = [](const char16_t* text, char16_t unit) {
        return FindFirst(text, kUnlimited, IsEndOrUnit{unit});
    },
    .findLast = FindLastUnit,
    .findNotAsciiNarrow = [](const char* text) {
        return FindFirst(text, kUnlimited, IsEndOrNotAscii<char>());
    },
    .findNotAsciiWide = [](const char16_t* text) {
        return FindFirst(text, kUnlimited, IsEndOrNotAscii<char16_t>());
    },
    .findDifference = [](const char16_t* first, const char16_t* second, std::size_t limit) {
        return FindPair(first, second, limit, Differ());
    },
    .findLowerDifference = [](const char16_t* first, const char16_t* second) {
        return FindPair(first, second, kUnlimited, DifferAsLower());
    },
    .findUpperDifference = [](const char* first, const char* second, std::size_t limit) {
        return FindPair(first, second, limit, DifferAsUpperOrNotAscii());
    },
};

}  // namespace
}  // namespace unit_scan

#endif

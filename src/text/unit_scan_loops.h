// The loops of unit_scan.h, for a source that defines their table. How wide a block is depends on
// what that source is compiled for.
//
// Loads never touch a page that the text does not: a block stands at a multiple of its size and
// holds at least one byte of the text, or it does not cross the end of a page. Bytes around the
// text never decide a result. With QX_SCAN_UNITS_ALONE, units are loaded alone.
//
// Everything is local to the source: a copy of a shared function that is compiled for a newer
// processor must not stand in for the plain one.
#ifndef QX_TEXT_UNIT_SCAN_LOOPS_H
#define QX_TEXT_UNIT_SCAN_LOOPS_H

#include "text/unit_scan.h"

#ifndef QX_SCAN_UNITS_ALONE
#include <immintrin.h>
#endif

namespace unit_scan {
namespace {

constexpr std::size_t Smaller(std::size_t first, std::size_t second) {
    return first < second ? first : second;
}

template <typename Unit>
Plain<Unit> PlainUnit(Unit unit) {
    return static_cast<Plain<Unit>>(unit);
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

// The tests of pairs hold as long as two texts go on alike.

struct Alike {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        return (first == second) & (first != Value{});
    }
};

// Units that differ in the case bit alone are the same letter if one of them is a letter at all.
template <typename Unit>
struct AlikeButForCase {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        constexpr Plain<Unit> kCaseBit = 0x20;
        const auto lower = static_cast<Value>(first | kCaseBit);
        const auto ignored = FoldAscii<Unit, 'a'>::CaseBitIfLetter(lower);
        const auto difference = static_cast<Value>((first ^ second) & ~ignored);
        return (difference == Value{}) & (first != Value{});
    }
};

struct AlikeButForCaseAndAscii {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        constexpr u8 kLast = 0x7F;
        return AlikeButForCase<char>()(first, second) &
               (static_cast<Value>(first | second) <= Value{} + kLast);
    }
};

#ifdef QX_SCAN_UNITS_ALONE

template <typename Unit, typename Test>
std::size_t FindFirst(const Unit* text, std::size_t limit, Test test) {
    std::size_t index = 0;
    while (index < limit && !test(PlainUnit(text[index]))) {
        ++index;
    }
    return index;
}

template <typename Unit, typename Test>
std::size_t FindFirst(const Unit* text, Test test) {
    return FindFirst(text, kUnlimited, test);
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
    while (index < limit && test(PlainUnit(first[index]), PlainUnit(second[index]))) {
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
constexpr unsigned kFullMask = ~0u >> (32 - kBlockSize);

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
Block<Unit> LoadUnaligned(const Unit* text) {
    Block<Unit> units;
    __builtin_memcpy(&units, text, sizeof units);
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

// The index of the first unit that passes the test. The test holds for the terminator.
template <typename Unit, typename Test>
std::size_t FindFirst(const Unit* text, Test test) {
    const unsigned lead = Lead(text);
    const char* const bytes = reinterpret_cast<const char*>(text);
    unsigned mask = MaskOf(test(Load<Unit>(bytes - lead))) >> lead;
    if (mask != 0) {
        return LowestBit(mask) / sizeof(Unit);
    }
    std::size_t at = kBlockSize - lead;
    while ((mask = MaskOf(test(Load<Unit>(bytes + at)))) == 0) {
        at += kBlockSize;
    }
    return (at + LowestBit(mask)) / sizeof(Unit);
}

// The same, or the limit.
template <typename Unit, typename Test>
std::size_t FindFirst(const Unit* text, std::size_t limit, Test test) {
    if (limit == 0) {
        return 0;
    }
    const unsigned lead = Lead(text);
    const char* const bytes = reinterpret_cast<const char*>(text);
    const std::size_t end = limit < kUnlimited / sizeof(Unit) ? limit * sizeof(Unit) : kUnlimited;
    unsigned mask = MaskOf(test(Load<Unit>(bytes - lead))) >> lead;
    std::size_t at = 0;
    for (std::size_t next = kBlockSize - lead; mask == 0 && next < end; next += kBlockSize) {
        at = next;
        mask = MaskOf(test(Load<Unit>(bytes + at)));
    }
    return mask != 0 ? Smaller(limit, (at + LowestBit(mask)) / sizeof(Unit)) : limit;
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

std::size_t RoomInPage(const void* address) {
    constexpr std::size_t kSmallestPage = 4096;
    return kSmallestPage - reinterpret_cast<std::uintptr_t>(address) % kSmallestPage;
}

// The index of the first pair of units that fails the test, or the limit. Two texts can stand at
// different places in their blocks, so their windows stand anywhere, but never across the end of a
// page.
template <typename Unit, typename Test>
std::size_t FindPair(const Unit* first, const Unit* second, std::size_t limit, Test test) {
    constexpr std::size_t kUnits = kBlockSize / sizeof(Unit);
    for (std::size_t index = 0; index < limit;) {
        const std::size_t room =
            Smaller(RoomInPage(first + index), RoomInPage(second + index)) / sizeof(Unit);
        if (room < kUnits) {
            if (!test(PlainUnit(first[index]), PlainUnit(second[index]))) {
                return index;
            }
            ++index;
            continue;
        }
        for (const std::size_t end = Smaller(limit, index + room / kUnits * kUnits); index < end;
             index += kUnits) {
            const unsigned mask =
                MaskOf(test(LoadUnaligned(first + index), LoadUnaligned(second + index)));
            if (mask != kFullMask) {
                return Smaller(limit, index + LowestBit(~mask) / sizeof(Unit));
            }
        }
    }
    return limit;
}

#endif

constexpr Loops kLoops = {
    .findEnd = [](const char16_t* text) { return FindFirst(text, IsEnd()); },
    .findEndWithin = [](const char16_t* text,
                        std::size_t limit) { return FindFirst(text, limit, IsEnd()); },
    .findUnitOrEnd = [](const char16_t* text,
                        char16_t unit) { return FindFirst(text, IsEndOrUnit{unit}); },
    .findLast = FindLastUnit,
    .findNotAsciiNarrow = [](const char* text) { return FindFirst(text, IsEndOrNotAscii<char>()); },
    .findNotAsciiWide =
        [](const char16_t* text) { return FindFirst(text, IsEndOrNotAscii<char16_t>()); },
    .findDifference = [](const char16_t* first, const char16_t* second,
                         std::size_t limit) { return FindPair(first, second, limit, Alike()); },
    .findLowerDifference =
        [](const char16_t* first, const char16_t* second) {
            return FindPair(first, second, kUnlimited, AlikeButForCase<char16_t>());
        },
    .findUpperDifference =
        [](const char* first, const char* second, std::size_t limit) {
            return FindPair(first, second, limit, AlikeButForCaseAndAscii());
        },
};

}  // namespace
}  // namespace unit_scan

#endif

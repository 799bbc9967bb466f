// Searches and comparisons of text in blocks of 16 bytes.
//
// A block is loaded only from an address that is a multiple of its size, and only when at least one
// of its bytes belongs to the text; a load at any other address lies within the text. So no load
// touches a page that the text does not, and memory checkers that know partial loads stay quiet.
// Bytes around the text never decide a result. Under a sanitizer, and where these instructions are
// missing, each unit is loaded alone. Wide text stands at even addresses.
#ifndef QX_TEXT_UNIT_SCAN_H
#define QX_TEXT_UNIT_SCAN_H

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "platform/types.h"

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QX_SCAN_UNITS_ALONE
#endif
#endif
#if !defined(__SSE2__) || defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QX_SCAN_UNITS_ALONE
#endif
#ifndef QX_SCAN_UNITS_ALONE
#include <emmintrin.h>
#endif

namespace unit_scan {

// Units take part in comparisons as unsigned numbers.
template <typename Unit>
using Plain = std::conditional_t<sizeof(Unit) == 1, u8, u16>;

constexpr std::size_t kUnlimited = SIZE_MAX;

// The tests take a unit or a whole block, one or two of them, and give a truth value, or a block
// whose lanes are all ones where the test holds.

struct IsEnd {
    template <typename Value>
    auto operator()(Value value) const {
        return value == Value{};
    }
};

template <typename Unit>
struct IsEndOrUnit {
    Plain<Unit> m_unit;

    template <typename Value>
    auto operator()(Value value) const {
        return (value == Value{}) | (value == m_unit);
    }
};

template <typename Unit>
struct IsEndOrNotAscii {
    template <typename Value>
    auto operator()(Value value) const {
        return static_cast<Value>(value - Plain<Unit>{1}) > Value{} + Plain<Unit>{0x7E};
    }
};

template <typename Unit>
struct Differs {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        return (first == Value{}) | (first != second);
    }
};

// Maps one range of ASCII letters onto the other: kFrom is the first letter of the range that goes.
template <typename Unit, char kFrom>
struct FoldAscii {
    template <typename Value>
    Value operator()(Value value) const {
        const auto letter = static_cast<Value>(value - Plain<Unit>{kFrom}) < Value{} + Plain<Unit>{26};
        return Flip(value, letter);
    }

  private:
    static Plain<Unit> Flip(Plain<Unit> value, bool letter) {
        return static_cast<Plain<Unit>>(value ^ (letter ? 0x20 : 0));
    }

    template <typename Value, typename Lanes>
    static Value Flip(Value value, Lanes letter) {
        return value ^ ((Value)letter & Plain<Unit>{0x20});
    }
};

template <typename Unit, char kFrom>
struct DiffersFolded {
    template <typename Value>
    auto operator()(Value first, Value second) const {
        constexpr FoldAscii<Unit, kFrom> kFold;
        return Differs<Unit>()(kFold(first), kFold(second));
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

template <typename Unit>
const Unit* FindLast(const Unit* text, Unit unit) {
    const Unit* found = nullptr;
    for (;; ++text) {
        found = *text == unit ? text : found;
        if (*text == 0) {
            return found;
        }
    }
}

template <typename Unit, typename Test>
std::size_t FindDifference(const Unit* first, const Unit* second, std::size_t limit, Test test) {
    std::size_t index = 0;
    while (index < limit && !test(static_cast<Plain<Unit>>(first[index]),
                                  static_cast<Plain<Unit>>(second[index]))) {
        ++index;
    }
    return index;
}

#else

constexpr std::size_t kBlockSize = 16;

template <typename Unit>
struct BlockOf {
    typedef Plain<Unit> Type __attribute__((vector_size(kBlockSize)));
};
template <typename Unit>
using Block = typename BlockOf<Unit>::Type;

inline unsigned Lead(const void* text) {
    return static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(text) % kBlockSize);
}

template <typename Unit>
Block<Unit> Load(const char* block) {
    return (Block<Unit>)_mm_load_si128(reinterpret_cast<const __m128i*>(block));
}

template <typename Unit>
Block<Unit> LoadUnaligned(const char* bytes) {
    return (Block<Unit>)_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

// A bit for each byte, set where its lane is.
template <typename Lanes>
unsigned MaskOf(Lanes lanes) {
    return static_cast<unsigned>(_mm_movemask_epi8((__m128i)lanes));
}

inline std::size_t LowestBit(unsigned mask) {
    return static_cast<std::size_t>(std::countr_zero(mask));
}

// The 16 bytes that begin `shift` bytes into the first of two neighbouring blocks.
template <typename Lanes>
Lanes Join(Lanes low, Lanes high, unsigned shift) {
    const auto upper = ((unsigned __int128)high << (120 - 8 * shift)) << 8;
    return (Lanes)(((unsigned __int128)low >> (8 * shift)) | upper);
}

// The index of the first unit that passes the test, or the limit. The test holds for the zero unit
// unless the limit ends the text.
template <typename Unit, typename Test>
std::size_t FindFirst(const Unit* text, std::size_t limit, Test test) {
    if (limit == 0) {
        return 0;
    }
    const unsigned lead = Lead(text);
    const char* block = reinterpret_cast<const char*>(text) - lead;
    unsigned mask = MaskOf(test(Load<Unit>(block))) >> lead;
    if (mask != 0) {
        return std::min(limit, LowestBit(mask) / sizeof(Unit));
    }
    for (std::size_t index = (kBlockSize - lead) / sizeof(Unit); index < limit;
         index += kBlockSize / sizeof(Unit)) {
        block += kBlockSize;
        mask = MaskOf(test(Load<Unit>(block)));
        if (mask != 0) {
            return std::min(limit, index + LowestBit(mask) / sizeof(Unit));
        }
    }
    return limit;
}

// The last place of a unit in the text, the terminator included, or null.
template <typename Unit>
const Unit* FindLast(const Unit* text, Unit unit) {
    const char* found = nullptr;
    const unsigned lead = Lead(text);
    const char* block = reinterpret_cast<const char*>(text) - lead;
    for (unsigned valid = ~0u << lead;; valid = ~0u, block += kBlockSize) {
        const Block<Unit> units = Load<Unit>(block);
        const unsigned ends = MaskOf(units == Block<Unit>{}) & valid;
        // Up to the first end, its own bits included.
        const unsigned inside = ends == 0 ? valid : valid & ((ends ^ (ends - 1)) * 2 + 1);
        const unsigned hits = MaskOf(units == static_cast<Plain<Unit>>(unit)) & inside;
        if (hits != 0) {
            found = block + std::bit_width(hits) - sizeof(Unit);
        }
        if (ends != 0) {
            return reinterpret_cast<const Unit*>(found);
        }
    }
}

// The index of the first pair of units that passes the test, or the limit. The test holds where the
// first text ends and where just one of the two does.
//
// The blocks are those of the text that begins earlier in its block; the window holds the units of
// the other text that stand against them.
template <typename Unit, typename Test>
std::size_t FindDifference(const Unit* first, const Unit* second, std::size_t limit, Test test) {
    if (limit == 0) {
        return 0;
    }
    if (Lead(second) < Lead(first)) {
        std::swap(first, second);
    }
    const unsigned lead = Lead(first);
    const unsigned shift = Lead(second) - lead;
    const char* const blocks = reinterpret_cast<const char*>(first) - lead;
    const char* const others = reinterpret_cast<const char*>(second) - lead - shift;
    const std::size_t end = limit < kUnlimited / 4 ? limit * sizeof(Unit) + lead : kUnlimited;
    unsigned valid = ~0u << lead;
    Block<Unit> low = Load<Unit>(others);
    unsigned lowEnds = MaskOf(IsEnd()(low)) >> (lead + shift);
    for (std::size_t at = 0;; at += kBlockSize) {
        const bool isLast = lowEnds != 0 || at + kBlockSize - shift >= end;
        const Block<Unit> high = isLast ? Block<Unit>{} : Load<Unit>(others + at + kBlockSize);
        const unsigned highEnds = MaskOf(IsEnd()(high));
        const bool isWhole = highEnds == 0 && at + 2 * kBlockSize - shift <= end;
        const Block<Unit> window =
            isWhole ? LoadUnaligned<Unit>(others + at + shift) : Join(low, high, shift);
        const unsigned mask = MaskOf(test(Load<Unit>(blocks + at), window)) & valid;
        if (mask != 0) {
            return std::min(limit, (at + LowestBit(mask) - lead) / sizeof(Unit));
        }
        if (isLast) {
            return limit;
        }
        valid = ~0u;
        low = high;
        lowEnds = highEnds;
    }
}

#endif

}  // namespace unit_scan

#endif

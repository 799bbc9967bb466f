// The loops of unit_scan.h, for a source that defines their table. How wide a block is depends on
// what that source is compiled for.
//
// Loads never touch a page that the text does not: a block stands at a multiple of its size and
// holds at least one byte of the text, or it is a window, which stands anywhere, but never across
// the end of a page. Bytes around the text never decide a result. With QX_SCAN_UNITS_ALONE, units
// are loaded alone.
//
// Everything is local to the source: a copy of a shared function that is compiled for a newer
// processor must not stand in for the plain one.
#ifndef QX_TEXT_UNIT_SCAN_LOOPS_H
#define QX_TEXT_UNIT_SCAN_LOOPS_H

#include "text/unit_scan.h"
#include "text/unit_scan_conditions.h"

#ifndef QX_SCAN_UNITS_ALONE
#include "text/unit_scan_blocks.h"
#endif

namespace unit_scan {
namespace {

#ifdef QX_SCAN_UNITS_ALONE

template <typename Unit, typename Count, typename Test>
std::size_t FindFirst(const Unit* text, Count limit, Test test) {
    std::size_t index = 0;
    while (limit.Allows(index) && !test(PlainUnit(text[index]))) {
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

template <typename Unit, typename Count, typename Test>
std::size_t FindPair(const Unit* first, const Unit* second, Count limit, Test test) {
    std::size_t index = 0;
    while (limit.Allows(index) && test(PlainUnit(first[index]), PlainUnit(second[index]))) {
        ++index;
    }
    return index;
}

template <typename Unit>
Unit* CopyText(Unit* target, const Unit* source) {
    for (std::size_t index = 0; (target[index] = source[index]) != 0; ++index) {
    }
    return target;
}

#else

// The hits from an address to the end of its block.
template <typename Unit, typename Test>
unsigned HitsInBlock(const Unit* text, Test test) {
    const unsigned lead = Lead(text);
    return MaskOf(test(LoadAligned<Unit>(reinterpret_cast<const char*>(text) - lead))) >> lead;
}

template <typename Unit>
std::size_t UnitsToBlockEnd(const Unit* text) {
    return (kBlockSize - Lead(text)) / sizeof(Unit);
}

// The index of the first unit that passes the test, or the limit. Without a limit, the test holds
// for the terminator.
template <typename Unit, typename Count, typename Test>
[[gnu::always_inline]] inline std::size_t FindFirst(const Unit* text, Count limit, Test test) {
    std::size_t index = 0;
    while (limit.Allows(index)) {
        const Unit* const at = text + index;
        if (!IsNearPageEnd(AddressOf(at), kGroupSize)) [[likely]] {
            const std::size_t offset = FindInGroup([=](std::size_t windowOffset) {
                return MaskOf(test(Load(at + windowOffset / sizeof(Unit))));
            });
            index += offset / sizeof(Unit);
            if (offset < kGroupSize) {
                break;
            }
        } else if (!IsAligned(at)) {
            if (test(LoadUnit(at))) {
                break;
            }
            ++index;
        } else {
            const unsigned hits = HitsInBlock(at, test);
            if (hits != 0) {
                index += LowestBit(hits) / sizeof(Unit);
                break;
            }
            index += UnitsToBlockEnd(at);
        }
    }
    return limit.Cut(index);
}

struct IsUnit {
    u16 m_unit;

    template <typename Value>
    auto operator()(Value value) const {
        return value == m_unit;
    }
};

// The hits among the first units of a text, fewer than a window holds.
template <typename Test>
unsigned HitsInHead(const char16_t* text, std::size_t count, Test test) {
    const std::size_t bytes = count * sizeof(char16_t);
    if (IsNearPageEnd(AddressOf(text), kBlockSize)) {
        const Block<char16_t> window = Load(text + count - kBlockSize / sizeof(char16_t));
        return MaskOf(test(window)) >> (kBlockSize - bytes);
    }
    return MaskOf(test(Load(text))) & ((1u << bytes) - 1);
}

// Backwards from the end, which is found first.
const char16_t* FindLastUnit(const char16_t* text, char16_t unit) {
    constexpr std::size_t kUnits = kBlockSize / sizeof(char16_t);
    const IsUnit test{unit};
    std::size_t count = FindFirst(text, NoLimit(), IsEnd()) + 1;
    while (count >= kUnits) {
        count -= kUnits;
        if (const unsigned hits = MaskOf(test(Load(text + count))); hits != 0) {
            return text + count + HighestBit(hits) / sizeof(char16_t);
        }
    }
    const unsigned hits = count != 0 ? HitsInHead(text, count, test) : 0;
    return hits != 0 ? text + HighestBit(hits) / sizeof(char16_t) : nullptr;
}

template <typename Unit, typename Test>
[[gnu::always_inline]] inline unsigned FailuresOf(const Unit* first, const Unit* second,
                                                  Test test) {
    return MaskOf(test(Load(first), Load(second))) ^ kFullMask;
}

// The index of the first pair of units that fails the test, or the limit. Two texts can stand at
// different places in their blocks, so close to the end of a page windows do not fit.
template <typename Unit, typename Count, typename Test>
[[gnu::always_inline]] inline std::size_t FindPair(const Unit* first, const Unit* second,
                                                   Count limit, Test test) {
    std::size_t index = 0;
    while (limit.Allows(index)) {
        const Unit* const one = first + index;
        const Unit* const other = second + index;
        if (!IsNearPageEnd(AddressOf(one), kGroupSize) &&
            !IsNearPageEnd(AddressOf(other), kGroupSize)) [[likely]] {
            const std::size_t offset = FindInGroup([=](std::size_t windowOffset) {
                const std::size_t units = windowOffset / sizeof(Unit);
                return FailuresOf(one + units, other + units, test);
            });
            index += offset / sizeof(Unit);
            if (offset < kGroupSize) {
                return limit.Cut(index);
            }
        } else if (!IsNearPageEnd(AddressOf(one), kBlockSize) &&
                   !IsNearPageEnd(AddressOf(other), kBlockSize)) {
            const unsigned failures = FailuresOf(one, other, test);
            if (failures != 0) {
                return limit.Cut(index + LowestBit(failures) / sizeof(Unit));
            }
            index += kBlockSize / sizeof(Unit);
        } else if (test(PlainUnit(*one), PlainUnit(*other))) {
            ++index;
        } else {
            return index;
        }
    }
    return limit.Cut(index);
}

// Copies from one part's size to twice that. Both are loaded before one is stored.
template <typename Part>
void CopyTwoParts(char* target, const char* source, std::size_t size) {
    Part head;
    Part tail;
    __builtin_memcpy(&head, source, sizeof head);
    __builtin_memcpy(&tail, source + size - sizeof tail, sizeof tail);
    __builtin_memcpy(target, &head, sizeof head);
    __builtin_memcpy(target + size - sizeof tail, &tail, sizeof tail);
}

// Inlined, as the compiler leaves the wide registers' upper halves in use around a call.
template <typename Unit>
[[gnu::always_inline]] inline void CopyUpToBlock(Unit* target, const Unit* source,
                                                 std::size_t size) {
    char* const to = reinterpret_cast<char*>(target);
    const char* const from = reinterpret_cast<const char*>(source);
    if (size >= sizeof(__m128i)) {
        CopyTwoParts<__m128i>(to, from, size);
    } else if (size >= sizeof(u64)) {
        CopyTwoParts<u64>(to, from, size);
    } else if (size >= sizeof(u32)) {
        CopyTwoParts<u32>(to, from, size);
    } else if (size >= sizeof(u16)) {
        CopyTwoParts<u16>(to, from, size);
    } else {
        *to = *from;
    }
}

// Both copy a part of the text and tell whether there is more of it.

template <typename Unit>
[[gnu::always_inline]] inline bool CopyBlock(Unit*& target, const Unit*& source) {
    if (!IsAligned(source)) {
        const bool isEnd = IsEnd()(LoadUnit(source));
        CopyUpToBlock(target++, source++, sizeof(Unit));
        return !isEnd;
    }
    const unsigned ends = HitsInBlock(source, IsEnd());
    const std::size_t size = ends != 0 ? LowestBit(ends) + sizeof(Unit) : kBlockSize - Lead(source);
    CopyUpToBlock(target, source, size);
    target += size / sizeof(Unit);
    source += size / sizeof(Unit);
    return ends == 0;
}

template <typename Unit>
[[gnu::always_inline]] inline bool CopyGroup(Unit*& target, const Unit*& source) {
    const std::size_t offset = FindInGroup([=](std::size_t windowOffset) {
        const std::size_t units = windowOffset / sizeof(Unit);
        const auto window = Load(source + units);
        const unsigned ends = MaskOf(IsEnd()(window));
        if (ends == 0) [[likely]] {
            Store(target + units, window);
        }
        return ends;
    });
    const std::size_t stored = offset / kBlockSize * kBlockSize / sizeof(Unit);
    target += stored;
    source += stored;
    if (offset == kGroupSize) {
        return true;
    }
    CopyUpToBlock(target, source, offset % kBlockSize + sizeof(Unit));
    return false;
}

// Nothing of the source is read again after something behind it was stored.
template <typename Unit>
Unit* CopyText(Unit* target, const Unit* source) {
    Unit* to = target;
    while (IsNearPageEnd(AddressOf(source), kGroupSize) ? CopyBlock(to, source)
                                                        : CopyGroup(to, source)) {
    }
    return target;
}

#endif

const char16_t* FindUnitOrNull(const char16_t* text, char16_t unit) {
    const char16_t* const found = text + FindFirst(text, NoLimit(), IsEndOrUnit{unit});
    return *found == unit ? found : nullptr;
}

template <typename Count>
[[gnu::always_inline]] inline i32 Difference(const char16_t* first, const char16_t* second,
                                             Count limit) {
    const std::size_t index = FindPair(first, second, limit, Alike());
    return limit.Allows(index) ? first[index] - second[index] : 0;
}

template <typename Count>
[[gnu::always_inline]] inline i32 UpperDifference(const char* first, const char* second,
                                                  Count limit, CompareRest* compareRest) {
    const std::size_t index = FindPair(first, second, limit, AlikeButForCaseAndAscii());
    if (!limit.Allows(index) || (first[index] | second[index]) == 0) {
        return 0;
    }
    const FoldAscii<char, 'a'> fold;
    const auto one = PlainUnit(first[index]);
    const auto other = PlainUnit(second[index]);
    return (one | other) < 0x80 ? fold(one) - fold(other)
                                : compareRest(first + index, second + index, limit.Behind(index));
}

constexpr Loops kLoops = {
    .findEnd = [](const char16_t* text) { return FindFirst(text, NoLimit(), IsEnd()); },
    .findEndWithin = [](const char16_t* text,
                        std::size_t limit) { return FindFirst(text, Limit{limit}, IsEnd()); },
    .findUnit = FindUnitOrNull,
    .findLast = FindLastUnit,
    .findNotAsciiNarrow =
        [](const char* text) { return FindFirst(text, NoLimit(), IsEndOrNotAscii<char>()); },
    .findNotAsciiWide =
        [](const char16_t* text) {
            return FindFirst(text, NoLimit(), IsEndOrNotAscii<char16_t>());
        },
    .findDifference =
        [](const char16_t* first, const char16_t* second) {
            return FindPair(first, second, NoLimit(), Alike());
        },
    .findLowerDifference =
        [](const char16_t* first, const char16_t* second) {
            return FindPair(first, second, NoLimit(), AlikeButForCase<char16_t>());
        },
    .compare = [](const char16_t* first,
                  const char16_t* second) { return Difference(first, second, NoLimit()); },
    .compareWithin = [](const char16_t* first, const char16_t* second,
                        std::size_t limit) { return Difference(first, second, Limit{limit}); },
    .order =
        [](const char16_t* first, const char16_t* second) {
            const i32 difference = Difference(first, second, NoLimit());
            return (difference > 0) - (difference < 0);
        },
    .compareUpper =
        [](const char* first, const char* second, CompareRest* compareRest) {
            return UpperDifference(first, second, NoLimit(), compareRest);
        },
    .compareUpperWithin =
        [](const char* first, const char* second, std::size_t limit, CompareRest* compareRest) {
            return UpperDifference(first, second, Limit{limit}, compareRest);
        },
    .copyNarrow = CopyText<char>,
    .copyWide = CopyText<char16_t>,
};

}  // namespace
}  // namespace unit_scan

#endif

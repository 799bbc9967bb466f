// Searches and comparisons of text, many units at a time where the processor can.
//
// Wide text stands at even addresses. An index counts units.
#ifndef QX_TEXT_UNIT_SCAN_H
#define QX_TEXT_UNIT_SCAN_H

#include <atomic>
#include <cstdint>
#include <type_traits>

#include "platform/types.h"

// Blocks take bytes along that lie around a text, so the sanitizers get loops over single units.
#if defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QX_SCAN_BLOCKS
#endif
#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(hwaddress_sanitizer) || \
    __has_feature(memory_sanitizer) || __has_feature(thread_sanitizer)
#undef QX_SCAN_BLOCKS
#endif
#endif

namespace unit_scan {

constexpr std::size_t kUnlimited = SIZE_MAX;

// Units take part in comparisons as unsigned numbers.
template <typename Unit>
using Plain = std::conditional_t<sizeof(Unit) == 1, u8, u16>;

// The same bits as signed numbers, of a unit or of a block of units: processors compare those best.

inline signed char AsSigned(u8 unit) {
    return static_cast<signed char>(unit);
}

inline i16 AsSigned(u16 unit) {
    return static_cast<i16>(unit);
}

template <typename Block>
auto AsSigned(Block units) {
    return (decltype(units == units))units;
}

// Maps a range of ASCII letters, of which kFrom is the first, to the other case. The value is one
// unit or, in the loops behind this header, a block of units.
template <typename Unit, char kFrom>
struct FoldAscii {
    template <typename Value>
    Value operator()(Value value) const {
        return static_cast<Value>(value ^ CaseBitIfLetter(value));
    }

    // The bit in which the cases differ, or 0 for what is no letter of the range. The letters are
    // moved to the greatest numbers there are, so that one comparison tells them.
    template <typename Value>
    static Value CaseBitIfLetter(Value value) {
        constexpr Plain<Unit> kGreatest = Plain<Unit>(~0u) / 2;
        constexpr Plain<Unit> kBelow = kGreatest - 26;
        constexpr Plain<Unit> kToGreatest = kBelow + 1 - kFrom;
        const auto moved = static_cast<Value>(value + kToGreatest);
        return CaseBitIf<Value>(AsSigned(moved) > AsSigned(static_cast<Value>(Value{} + kBelow)));
    }

  private:
    template <typename Value>
    static Value CaseBitIf(bool isLetter) {
        return isLetter ? 0x20 : 0;
    }

    template <typename Value, typename Lanes>
    static Value CaseBitIf(Lanes isLetter) {
        constexpr Plain<Unit> kCaseBit = 0x20;
        return (Value)isLetter & kCaseBit;
    }
};

using CompareRest = i32(const char* first, const char* second, std::size_t limit);

struct Loops {
    std::size_t (*findEnd)(const char16_t* text);
    std::size_t (*findEndWithin)(const char16_t* text, std::size_t limit);
    const char16_t* (*findUnit)(const char16_t* text, char16_t unit);
    const char16_t* (*findLast)(const char16_t* text, char16_t unit);
    std::size_t (*findNotAsciiNarrow)(const char* text);
    std::size_t (*findNotAsciiWide)(const char16_t* text);
    std::size_t (*findDifference)(const char16_t* first, const char16_t* second);
    std::size_t (*findLowerDifference)(const char16_t* first, const char16_t* second);
    i32 (*compare)(const char16_t* first, const char16_t* second);
    i32 (*compareWithin)(const char16_t* first, const char16_t* second, std::size_t limit);
    i32 (*order)(const char16_t* first, const char16_t* second);
    i32 (*compareUpper)(const char* first, const char* second, CompareRest* compareRest);
    i32 (*compareUpperWithin)(const char* first, const char* second, std::size_t limit,
                              CompareRest* compareRest);
    char* (*copyNarrow)(char* target, const char* source);
    char16_t* (*copyWide)(char16_t* target, const char16_t* source);
};

extern const Loops kUnitLoops;
#ifdef QX_SCAN_BLOCKS
extern const Loops kSse2Loops;
extern const Loops kAvx2Loops;
#endif

// The best for this processor. Up to the first call, loops that find out which those are.
extern constinit std::atomic<const Loops*> s_bestLoops;

inline const Loops& BestLoops() {
    return *s_bestLoops.load(std::memory_order_relaxed);
}

// The index of the terminator.
inline std::size_t FindEnd(const char16_t* text) {
    return BestLoops().findEnd(text);
}

// The same, or the limit. Reads nothing with a limit of 0.
inline std::size_t FindEnd(const char16_t* text, std::size_t limit) {
    return BestLoops().findEndWithin(text, limit);
}

// The first place of a unit in a text, the terminator included, or null.
inline const char16_t* FindUnit(const char16_t* text, char16_t unit) {
    return BestLoops().findUnit(text, unit);
}

// The last one.
inline const char16_t* FindLast(const char16_t* text, char16_t unit) {
    return BestLoops().findLast(text, unit);
}

// The index of the terminator or of the first unit from 0x80 up.
inline std::size_t FindNotAscii(const char* text) {
    return BestLoops().findNotAsciiNarrow(text);
}

inline std::size_t FindNotAscii(const char16_t* text) {
    return BestLoops().findNotAsciiWide(text);
}

// The index of the first units that differ, or of both terminators.
inline std::size_t FindDifference(const char16_t* first, const char16_t* second) {
    return BestLoops().findDifference(first, second);
}

// The same for texts of which A to Z are mapped to lower case.
inline std::size_t FindLowerDifference(const char16_t* first, const char16_t* second) {
    return BestLoops().findLowerDifference(first, second);
}

// The difference of the first units that differ, or 0.
inline i32 Compare(const char16_t* first, const char16_t* second) {
    return BestLoops().compare(first, second);
}

// The same for texts of at most so many units.
inline i32 Compare(const char16_t* first, const char16_t* second, std::size_t limit) {
    return BestLoops().compareWithin(first, second, limit);
}

// Its sign: -1, 0 or 1.
inline i32 Order(const char16_t* first, const char16_t* second) {
    return BestLoops().order(first, second);
}

// The difference of the first units that differ when a to z are mapped to upper case, or 0. As soon
// as one of the units is from 0x80 up, the function compares what is left.
inline i32 CompareUpper(const char* first, const char* second, CompareRest* compareRest) {
    return BestLoops().compareUpper(first, second, compareRest);
}

// The same for texts of at most so many units.
inline i32 CompareUpper(const char* first, const char* second, std::size_t limit,
                        CompareRest* compareRest) {
    return BestLoops().compareUpperWithin(first, second, limit, compareRest);
}

// Copies a text with its terminator and gives the target. Works like a loop from the first unit on,
// also where the target overlaps the source from below.
inline char* Copy(char* target, const char* source) {
    return BestLoops().copyNarrow(target, source);
}

inline char16_t* Copy(char16_t* target, const char16_t* source) {
    return BestLoops().copyWide(target, source);
}

}  // namespace unit_scan

#endif

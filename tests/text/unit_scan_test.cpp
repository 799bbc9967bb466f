#include "text/unit_scan.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>
#include <string>

#include "platform/processor.h"
#include "support/system.h"

namespace {

using unit_scan::kUnlimited;
using unit_scan::Loops;

// The units at the end of a page whose neighbours may not be touched, less a few bytes, or at its
// beginning, with others around them.
template <typename Unit>
Unit* Place(const FencedPage& page, const std::basic_string<Unit>& units, size_t bytesBehind,
            bool atEnd) {
    std::memset(page.Begin(), 'a', page.Size());
    const size_t bytes = units.size() * sizeof(Unit);
    char* const begin = page.Begin() + (atEnd ? page.Size() - bytesBehind - bytes : bytesBehind);
    std::memcpy(begin, units.data(), bytes);
    return reinterpret_cast<Unit*>(begin);
}

// A text in a packed record need not stand at an even address. The compiler's checks stop there.
#ifdef QX_SCAN_BLOCKS
constexpr size_t kStepOfWide = 1;
#else
constexpr size_t kStepOfWide = 2;
#endif

const Loops& LoopsOf(int index) {
#ifdef QX_SCAN_BLOCKS
    if (index == 1) {
        return unit_scan::kSse2Loops;
    }
    if (index == 2 && platform::ProcessorHasAvx2()) {
        return unit_scan::kAvx2Loops;
    }
#endif
    return index == 3 ? unit_scan::BestLoops() : unit_scan::kUnitLoops;
}

class UnitScan : public testing::TestWithParam<int> {
  protected:
    const Loops& m_loops = LoopsOf(GetParam());
    FencedPage m_first, m_second;
};

// Runs a check for texts of many lengths at both ends of a page, whatever their alignment.
template <typename Check>
void ForEachPlace(size_t step, Check check) {
    for (const bool atEnd : {true, false}) {
        for (size_t bytesBehind = 0; bytesBehind < 66; bytesBehind += step) {
            for (size_t length = 0; length < 70; length += length < 36 ? 1 : 7) {
                check(length, bytesBehind, atEnd);
            }
        }
    }
}

TEST_P(UnitScan, SingleTextsAreSearchedWithinTheirPages) {
    ForEachPlace(kStepOfWide, [this](size_t length, size_t bytesBehind, bool atEnd) {
        const bool isMarked = length > 2;
        std::u16string units(length, u'x');
        if (isMarked) {
            units[length / 2] = u'y';
            units[length - 1] = u'y';
        }
        const char16_t* text = Place(m_first, units + u'\0', bytesBehind, atEnd);
        ASSERT_EQ(m_loops.findEnd(text), length);
        ASSERT_EQ(m_loops.findEndWithin(text, length / 2), length / 2);
        ASSERT_EQ(m_loops.findEndWithin(text, kUnlimited), length);
        ASSERT_EQ(m_loops.findUnit(text, u'y'), isMarked ? text + length / 2 : nullptr);
        ASSERT_EQ(m_loops.findUnit(text, u'\0'), text + length);
        ASSERT_EQ(m_loops.findLast(text, u'y'), isMarked ? text + length - 1 : nullptr);
        ASSERT_EQ(m_loops.findLast(text, u'\0'), text + length);
        ASSERT_EQ(m_loops.findLast(text, u'a' * 0x101), nullptr);
        ASSERT_EQ(m_loops.findNotAsciiWide(text), length);
        if (isMarked) {
            units[length / 2] = 0x80;
            text = Place(m_first, units, bytesBehind, atEnd);
            ASSERT_EQ(m_loops.findNotAsciiWide(text), length / 2);
            ASSERT_EQ(m_loops.findEndWithin(text, length), length);
        }
    });
}

TEST_P(UnitScan, NarrowTextEndsAtFirstByteThatIsNotAscii) {
    ForEachPlace(1, [this](size_t length, size_t bytesBehind, bool atEnd) {
        for (const char end : {'\0', '\x80', '\xFF'}) {
            const std::string units = std::string(length, '\x7F') + end;
            ASSERT_EQ(m_loops.findNotAsciiNarrow(Place(m_first, units, bytesBehind, atEnd)),
                      length);
        }
    });
}

TEST_P(UnitScan, PairsOfTextsAreComparedWithinTheirPages) {
    for (size_t otherBehind = 0; otherBehind < 36; otherBehind += 6) {
        ForEachPlace(2, [&](size_t length, size_t bytesBehind, bool atEnd) {
            std::u16string units(length, u'K');
            const char16_t* const text = Place(m_first, units + u'\0', bytesBehind, atEnd);
            units.append(length % 3, u'k');
            const char16_t* const other = Place(m_second, units + u'\0', otherBehind, atEnd);
            ASSERT_EQ(m_loops.findDifference(text, other), length);
            ASSERT_EQ(m_loops.findDifference(other, text), length);
            ASSERT_EQ(m_loops.compareWithin(other, text, length), 0);
            ASSERT_EQ(m_loops.compareWithin(other, text, kUnlimited), length % 3 == 0 ? 0 : 'k');
            ASSERT_EQ(m_loops.findLowerDifference(text, other), length);
            if (length > 0) {
                units[length / 2] = u'k';
                const char16_t* const small = Place(m_second, units + u'\0', otherBehind, atEnd);
                ASSERT_EQ(m_loops.findDifference(text, small), length / 2);
                ASSERT_EQ(m_loops.compare(text, small), 'K' - 'k');
                ASSERT_EQ(m_loops.compareWithin(small, text, length / 2), 0);
                ASSERT_EQ(m_loops.compareWithin(small, text, length / 2 + 1), 'k' - 'K');
                ASSERT_EQ(m_loops.order(small, text), 1);
                ASSERT_EQ(m_loops.findLowerDifference(text, small), length);
            }
        });
    }
}

// Longer than the windows that are looked at together, whichever unit it is that counts.
TEST_P(UnitScan, NoUnitOfALongTextIsLeftOut) {
    constexpr size_t kLength = 300;
    const std::u16string alike(kLength, u'x');
    const std::string narrow(kLength, 'x');
    const char16_t* const wideFirst = Place(m_first, alike + u'\0', 0, false);
    for (size_t odd = 0; odd < kLength; ++odd) {
        std::u16string units = alike + u'\0';
        units[odd] = 0x80;
        const char16_t* const wide = Place(m_second, units, 0, false);
        ASSERT_EQ(m_loops.findDifference(wideFirst, wide), odd);
        ASSERT_EQ(m_loops.findLowerDifference(wideFirst, wide), odd);
        ASSERT_EQ(m_loops.findNotAsciiWide(wide), odd);
        ASSERT_EQ(m_loops.findUnit(wide, 0x80), wide + odd);
        ASSERT_EQ(m_loops.findLast(wide, 0x80), wide + odd);
        std::string bytes = narrow + '\0';
        bytes[odd] = '_';
        ASSERT_EQ(m_loops.compareUpper(Place(m_second, bytes, 0, false), narrow.c_str(), nullptr),
                  '_' - 'X');
    }
}

template <typename Unit>
void CheckCopy(Unit* (*copy)(Unit*, const Unit*), Unit* target, const Unit* source) {
    const std::basic_string<Unit> text(source);
    const Unit around[] = {target[-1], target[text.size() + 1]};
    ASSERT_EQ(copy(target, source), target);
    ASSERT_EQ(target, text);
    ASSERT_EQ(target[-1], around[0]);
    ASSERT_EQ(target[text.size() + 1], around[1]);
}

TEST_P(UnitScan, CopiesEndBehindTheTerminatorAlsoOntoTheUnitsBelow) {
    char elsewhere[256];
    ForEachPlace(1, [&](size_t length, size_t bytesBehind, bool atEnd) {
        std::string units(length + 1, '\0');
        std::iota(units.begin(), units.end() - 1, '\1');
        std::memset(elsewhere, 'x', sizeof elsewhere);
        CheckCopy(m_loops.copyNarrow, elsewhere + 32, Place(m_first, units, bytesBehind, atEnd));
        for (const size_t distance : {1u, 2u, 7u, 15u, 16u, 40u, 64u}) {
            const size_t behind = bytesBehind + (atEnd ? 0 : 2 * distance + 2);
            const std::u16string wide(units.begin(), units.end());
            char16_t* const source = Place(m_first, wide, behind & ~(kStepOfWide - 1), atEnd);
            CheckCopy(m_loops.copyWide, source - distance, source);
        }
    });
}

const char* s_rest;

i32 ReportRest(const char* first, const char*, size_t limit) {
    s_rest = limit != 0 ? first : nullptr;
    return 1000;
}

TEST_P(UnitScan, NarrowPairsAreFoldedUpToTheFirstHighByte) {
    struct {
        const char* first;
        const char* second;
        i32 result;
    } const tails[] = {{"", "", 0},           {"\xC3", "\xC3", 1000}, {"a", "\xE1", 1000},
                       {"_", "A", '_' - 'A'}, {"", "b", -'B'},        {"{", "[", '{' - '['},
                       {"z", "Z", 0},         {"a{", "A`", '{' - '`'}};
    ForEachPlace(1, [&](size_t length, size_t bytesBehind, bool atEnd) {
        const std::string lower = std::string(length, 'q');
        const std::string upper = std::string(length, 'Q');
        for (const auto& tail : tails) {
            const char* const first = Place(m_first, lower + tail.first + '\0', bytesBehind, atEnd);
            const char* const second = Place(m_second, upper + tail.second + '\0', 3, atEnd);
            s_rest = nullptr;
            ASSERT_EQ(m_loops.compareUpperWithin(first, second, length, ReportRest), 0);
            ASSERT_EQ(m_loops.compareUpper(first, second, ReportRest), tail.result);
            ASSERT_EQ(s_rest, tail.result == 1000 ? first + length : nullptr);
        }
    });
}

INSTANTIATE_TEST_SUITE_P(EveryKind, UnitScan, testing::Range(0, 4));

}  // namespace

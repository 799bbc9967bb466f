#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <clocale>
#include <string>

#include "support/exact_text.h"
#include "support/known_differences.h"

namespace {

int SignOf(int32_t number) {
    return (number > 0) - (number < 0);
}

TEST(StringCompare, PlainMembersGiveSignOrDifferenceOfUnsignedUnits) {
    struct Case {
        const char* first;
        const char* second;
        int32_t difference;
    };
    const std::string longText(70, 'x');
    const std::string longer = longText + 'y';
    for (const Case& each : {Case{"", "", 0},
                             {"", "a", -97},
                             {"a", "c", -2},
                             {"ab", "ab", 0},
                             {"a", "ab", -98},
                             {"\xE9", "a", 0xE9 - 'a'},
                             {"\xFF", "\x01", 254},
                             {longText.c_str(), longer.c_str(), -'y'}}) {
        const auto first = ExactText<char>(each.first);
        const auto second = ExactText<char>(each.second);
        EXPECT_EQ(QXStrCmpA(first.data(), second.data()), SignOf(each.difference));
        EXPECT_EQ(SignOf(QXStrNCmpA(first.data(), second.data(), 100)), SignOf(each.difference));
        const auto exactFirst = ExactText(Widen(each.first));
        const auto exactSecond = ExactText(Widen(each.second));
        EXPECT_EQ(QXStrCmpUCS2(exactFirst.data(), exactSecond.data()), each.difference);
        EXPECT_EQ(QXStrCmpUCS2(exactSecond.data(), exactFirst.data()), -each.difference);
        EXPECT_EQ(QXStrCmpW(exactFirst.data(), exactSecond.data()), SignOf(each.difference));
        EXPECT_EQ(SignOf(QXStrNCmpW(exactFirst.data(), exactSecond.data(), 100)),
                  SignOf(each.difference));
    }
    EXPECT_EQ(QXStrCmpUCS2(u"\xFFFF", u"\x0001"), 0xFFFE);
    EXPECT_EQ(QXStrCmpW(u"\xFFFF", u"\x0001"), 1);
}

TEST(StringCompare, CountsBoundWhatIsRead) {
    const auto first = ExactUnits(std::u16string(u"abcdefghijklmnopqrstuvwxyz0123456789"));
    auto second = first;
    second.back() = u'8';
    const auto narrowFirst = ExactUnits(std::string("ABC"));
    const auto narrowSecond = ExactUnits(std::string("abd"));
    for (size_t count = 0; count <= first.size(); ++count) {
        const int expected = count == first.size() ? 1 : 0;
        EXPECT_EQ(SignOf(QXStrNCmpW(first.data(), second.data(), count)), expected);
        EXPECT_EQ(SignOf(QXStrNCmpUTF16(first.data(), second.data(), count)), expected);
        EXPECT_EQ(SignOf(QXStrNICmpW(first.data(), second.data(), count)), expected);
    }
    for (size_t count = 0; count <= 3; ++count) {
        EXPECT_EQ(QXStrNICmpA(narrowFirst.data(), narrowSecond.data(), count), count < 3 ? 0 : -1);
    }
    EXPECT_EQ(QXStrNCmpUTF16(u"a", u"b", 0x100000000), 0);
    EXPECT_LT(QXStrNCmpUTF16(u"a", u"b", SIZE_MAX), 0);
    EXPECT_LT(QXStrNCmpUTF16(u"a", u"b", 0x80000000), 0);
}

TEST(StringCompare, AsciiFoldsUpNarrowAndDownWide) {
    struct Case {
        const char* first;
        const char* second;
        int32_t narrow;
        int32_t wide;
    };
    const std::string run(40, 'q');
    const std::string upperRun(40, 'Q');
    const std::string lowerTail = run + "_";
    const std::string upperTail = upperRun + "A";
    for (const Case& each : {Case{"", "", 0, 0},
                             {"ABC", "abc", 0, 0},
                             {"_", "a", '_' - 'A', '_' - 'a'},
                             {"@", "`", '@' - '`', '@' - '`'},
                             {"[", "{", '[' - '{', '[' - '{'},
                             {"Z", "y", 1, 1},
                             {"a", "B", -1, -1},
                             {"ab", "A", 'B', 'b'},
                             {lowerTail.c_str(), upperTail.c_str(), '_' - 'A', '_' - 'a'}}) {
        const auto first = ExactText<char>(each.first);
        const auto second = ExactText<char>(each.second);
        SCOPED_TRACE(std::string(each.first) + " " + each.second);
        EXPECT_EQ(QXStrICmpA(first.data(), second.data()), each.narrow);
        EXPECT_EQ(QXStrICmpA(second.data(), first.data()), -each.narrow);
        EXPECT_EQ(QXStrNICmpA(first.data(), second.data(), 100), each.narrow);
        const auto wideFirst = ExactText(Widen(each.first));
        const auto wideSecond = ExactText(Widen(each.second));
        EXPECT_EQ(QXStrICmpUCS2(wideFirst.data(), wideSecond.data()), each.wide);
        EXPECT_EQ(SignOf(QXStrICmpW(wideFirst.data(), wideSecond.data())), SignOf(each.wide));
    }
    EXPECT_EQ(QXStrICmpUCS2(u"\xC4", u"\xE4"), 0xC4 - 0xE4);
}

// Behind the first unit that is not ASCII letters count as lower case, so '_' changes sides.
TEST(StringCompare, RestBehindHighUnitFoldsDown) {
    EXPECT_EQ(QXStrICmpA("x\xC3_", "X\303A"), '_' - 'a');
    EXPECT_EQ(QXStrICmpA("x_\xC3", "XA\xC3"), '_' - 'A');
    EXPECT_EQ(QXStrICmpA("\303\204B", "\303\204b"), 0);
    EXPECT_EQ(QXStrICmpA("\xC3\x84", "\xC3\xA4"), 0x84 - 0xA4);
    EXPECT_EQ(QXStrICmpA("\xC3", "a"), kLowerOfHighUnit - 'a');
    EXPECT_EQ(QXStrICmpA("A", "\xC3"), 'a' - kLowerOfHighUnit);
    EXPECT_EQ(QXStrICmpA("", "\xC3"), -kLowerOfHighUnit);
    EXPECT_EQ(QXStrNICmpA("x\xC3_", "X\303A", 3), '_' - 'a');
    EXPECT_EQ(QXStrNICmpA("x\xC3_", "X\303A", 2), 0);
}

TEST(StringCompare, LocaleFoldsWideUnits) {
    ASSERT_TRUE(UseLocaleOfWideLetters());
    EXPECT_EQ(QXStrICmpW(u"STRA\xC4", u"stra\xE4"), 0);
    EXPECT_EQ(QXStrNICmpW(u"\x416zz", u"\x436yy", 1), 0);
    EXPECT_LT(QXStrICmpW(u"\xD800", u"\xDC00"), 0);
    EXPECT_LT(QXStrICmpW(u"_", u"A"), 0);
    std::setlocale(LC_ALL, "C");
}

TEST(StringCompare, Utf16MembersOrderByCodePointAndFoldFully) {
    EXPECT_GT(QXStrCmpUTF16(u"\xD800\xDC00", u"\xFFFD"), 0);
    EXPECT_LT(QXStrCmpW(u"\xD800\xDC00", u"\xFFFD"), 0);
    EXPECT_GT(QXStrNCmpUTF16(u"\xD800\xDC00", u"\xFFFD", 2), 0);
    EXPECT_EQ(QXStrICmpUTF16(u"Stra\u00DFe", u"STRASSE"), 0);
    EXPECT_GT(QXStrICmpUTF16(u"\xD800\xDC00", u"\xFFFD"), 0);
}

TEST(StringCompare, ThreeUnitsCountWhateverTheCount) {
    EXPECT_EQ(QXStrNICmpUTF16(u"abcd", u"ABCE", 100), 0);
    EXPECT_LT(QXStrNICmpUTF16(u"abc", u"abd", 1), 0);
    EXPECT_LT(QXStrNICmpUTF16(u"abc", u"ABD", 0), 0);
}

}  // namespace

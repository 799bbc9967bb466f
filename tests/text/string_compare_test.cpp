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
    EXPECT_EQ(QXStrCmpA("ab", "ab"), 0);
    EXPECT_EQ(QXStrCmpA("\xFF", "\x01"), 1);
    EXPECT_EQ(QXStrCmpA("x", "xz"), -1);
    EXPECT_LT(QXStrNCmpA("x", "xz", 2), 0);
    EXPECT_EQ(QXStrNCmpA("x", "xz", 1), 0);
    EXPECT_EQ(QXStrCmpW(u"\xFFFF", u"\x0001"), 1);
    EXPECT_EQ(QXStrCmpW(u"x", u"xz"), -1);
    EXPECT_EQ(QXStrCmpUCS2(u"\xFFFF", u"\x0001"), 0xFFFE);
    EXPECT_EQ(QXStrCmpUCS2(u"x", u"xz"), -'z');
}

TEST(StringCompare, CountsBoundWhatIsRead) {
    const auto first = ExactUnits(std::u16string(u"abcdefghijklmnopqrstuvwxyz0123456789"));
    auto second = first;
    second.back() = u'8';
    for (size_t count = 0; count <= first.size(); ++count) {
        for (const auto compare : {QXStrNCmpW, QXStrNCmpUTF16, QXStrNICmpW}) {
            EXPECT_EQ(SignOf(compare(first.data(), second.data(), count)), count == first.size());
        }
        if (count <= 3) {
            const auto narrow = ExactUnits(std::string("ABC"));
            EXPECT_EQ(QXStrNICmpA(narrow.data(), "abd", count), count < 3 ? 0 : -1);
        }
    }
    // Of this count the low 32 bits count, and as a signed number.
    EXPECT_EQ(QXStrNCmpUTF16(u"a", u"b", 0x100000000), 0);
    EXPECT_LT(QXStrNCmpUTF16(u"a", u"b", 0x80000000), 0);
    // This one counts for nothing: three units are compared.
    EXPECT_EQ(QXStrNICmpUTF16(u"abcd", u"ABCE", 100), 0);
    EXPECT_LT(QXStrNICmpUTF16(u"abc", u"ABD", 0), 0);
}

TEST(StringCompare, AsciiFoldsUpNarrowAndDownWide) {
    EXPECT_EQ(QXStrICmpA("ABC", "abc"), 0);
    EXPECT_EQ(QXStrICmpA("ab", "A"), 'B');
    EXPECT_EQ(QXStrICmpA("a_", "AA"), '_' - 'A');
    EXPECT_EQ(QXStrNICmpA("a_", "AA", 100), '_' - 'A');
    EXPECT_EQ(QXStrICmpUCS2(u"ABC[@", u"abc[@"), 0);
    EXPECT_EQ(QXStrICmpUCS2(u"ab", u"A"), 'b');
    EXPECT_EQ(QXStrICmpUCS2(u"a_", u"AA"), '_' - 'a');
    EXPECT_EQ(QXStrICmpUCS2(u"\xC4", u"\xE4"), 0xC4 - 0xE4);
    EXPECT_EQ(QXStrICmpW(u"ABC[@", u"abc[@"), 0);
    EXPECT_LT(QXStrICmpW(u"@", u"`"), 0);
}

// Behind the first unit that is not ASCII letters count as lower case, so '_' changes sides.
TEST(StringCompare, RestBehindHighUnitFoldsDown) {
    EXPECT_EQ(QXStrICmpA("x\xC3_", "X\303A"), '_' - 'a');
    EXPECT_EQ(QXStrICmpA("x_\xC3", "XA\xC3"), '_' - 'A');
    EXPECT_EQ(QXStrICmpA("\xC3\x84", "\xC3\xA4"), 0x84 - 0xA4);
    EXPECT_EQ(QXStrICmpA("A", "\xC3"), 'a' - kLowerOfHighUnit);
    EXPECT_EQ(QXStrNICmpA("x\xC3_", "X\303A", 3), '_' - 'a');
    EXPECT_EQ(QXStrNICmpA("x\xC3_", "X\303A", 2), 0);
}

TEST(StringCompare, LocaleFoldsWideUnits) {
    ASSERT_TRUE(UseLocaleOfWideLetters());
    EXPECT_EQ(QXStrICmpW(u"STRA\xC4", u"stra\xE4"), 0);
    EXPECT_EQ(QXStrNICmpW(u"\x416zz", u"\x436yy", 1), 0);
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

}  // namespace

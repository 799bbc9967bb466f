#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <clocale>
#include <string>

#include "support/exact_text.h"
#include "support/known_differences.h"

namespace {

class StringCase : public testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(UseLocaleOfWideLetters()); }
    void TearDown() override { std::setlocale(LC_ALL, "C"); }
};

bool IsUpper(int unit) {
    return unit >= 'A' && unit <= 'Z';
}

bool IsLower(int unit) {
    return unit >= 'a' && unit <= 'z';
}

TEST_F(StringCase, NarrowUnitsFollowAsciiAndNothingElse) {
    for (int unit = kNarrowTextIsUtf8 ? -128 : 0; unit < 128; ++unit) {
        SCOPED_TRACE(unit);
        const auto narrow = static_cast<char>(unit);
        EXPECT_EQ(QXToLowerA(narrow), IsUpper(unit) ? unit + 32 : unit);
        EXPECT_EQ(QXToUpperA(narrow), IsLower(unit) ? unit - 32 : unit);
        EXPECT_EQ(QXIsAlphaA(static_cast<signed char>(unit)) != 0, IsUpper(unit) || IsLower(unit));
        EXPECT_EQ(QXIsDigitA(static_cast<signed char>(unit)) != 0, unit >= '0' && unit <= '9');
        EXPECT_EQ(QXIsSpaceA(narrow), unit == 32 || (unit >= 9 && unit <= 13));
    }
}

TEST_F(StringCase, WideUnitsFollowTheLocaleAboveAscii) {
    struct Case {
        char16_t unit, lower, upper;
        bool isAlpha, isSpace;
    };
    for (const Case& each : {Case{u'A', u'a', u'A', true, false},
                             {u'z', u'z', u'Z', true, false},
                             {u'@', u'@', u'@', false, false},
                             {u'\t', u'\t', u'\t', false, true},
                             {0x0E, 0x0E, 0x0E, false, false},
                             {0x7F, 0x7F, 0x7F, false, false},
                             {0xC4, 0xE4, 0xC4, true, false},
                             {0x436, 0x436, 0x416, true, false},
                             {0x2003, 0x2003, 0x2003, false, true},
                             {0x3041, 0x3041, 0x3041, true, false},
                             {0xFFFF, 0xFFFF, 0xFFFF, false, false}}) {
        SCOPED_TRACE(static_cast<unsigned>(each.unit));
        EXPECT_EQ(QXToLowerW(each.unit), each.lower);
        EXPECT_EQ(QXToUpperW(each.unit), each.upper);
        EXPECT_EQ(QXIsAlphaW(each.unit) != 0, each.isAlpha);
        EXPECT_EQ(QXIsSpaceW(each.unit) != 0, each.isSpace);
        EXPECT_EQ(QXIsDigitW(each.unit), 0);
    }
    EXPECT_NE(QXIsDigitW(u'7'), 0);
    EXPECT_EQ(QXIsDigitW(0x137), 0);
    EXPECT_EQ(QXIsSpaceW(0x0B), 1);
}

TEST_F(StringCase, SurrogatesHaveNoCaseAndNoClass) {
    for (uint32_t unit = 0xD800; unit < 0xE000; ++unit) {
        const auto wide = static_cast<char16_t>(unit);
        ASSERT_EQ(QXToLowerW(wide), unit);
        ASSERT_EQ(QXToUpperW(wide), unit);
        ASSERT_FALSE(QXIsAlphaW(wide) || QXIsDigitW(wide) || QXIsSpaceW(wide)) << unit;
    }
}

TEST_F(StringCase, TextIsMappedInPlaceWhateverItsLength) {
    const std::string mixed = "Az@[`{ 09~";
    const std::string lower = "az@[`{ 09~";
    const std::string upper = "AZ@[`{ 09~";
    std::string text, asLower, asUpper;
    for (size_t length = 0; length <= 150; ++length) {
        auto narrow = ExactText(text);
        EXPECT_EQ(QXStrToLowerA(narrow.data()), narrow.data());
        EXPECT_EQ(narrow.data(), asLower);
        EXPECT_EQ(QXStrToUpperA(narrow.data()), narrow.data());
        EXPECT_EQ(narrow.data(), asUpper);
        auto wide = ExactText(Widen(text));
        EXPECT_EQ(QXStrToLowerW(wide.data()), wide.data());
        EXPECT_EQ(wide.data(), Widen(asLower));
        EXPECT_EQ(QXStrToUpperW(wide.data()), wide.data());
        EXPECT_EQ(wide.data(), Widen(asUpper));
        text += mixed[length % mixed.size()];
        asLower += lower[length % mixed.size()];
        asUpper += upper[length % mixed.size()];
    }
}

TEST_F(StringCase, RestBehindHighUnitIsMappedToo) {
    auto wide = ExactText<char16_t>(u"AB\xC4YZ\x416\xD800");
    QXStrToLowerW(wide.data());
    EXPECT_EQ(std::u16string(wide.data()), u"ab\xE4yz\x436\xD800");
    QXStrToUpperW(wide.data());
    EXPECT_EQ(std::u16string(wide.data()), u"AB\xC4YZ\x416\xD800");
    UseLocaleOfNarrowLetters();
    auto narrow = ExactText<char>("AB\xC3\x84YZ\xFF");
    QXStrToLowerA(narrow.data());
    EXPECT_STREQ(narrow.data(), "ab\xC3\x84yz\xFF");
    QXStrToUpperA(narrow.data());
    EXPECT_STREQ(narrow.data(), "AB\xC3\x84YZ\xFF");
}

TEST_F(StringCase, Utf16MembersMapTwiceTheLength) {
    auto text = ExactUnits(std::u16string(u"ABC\0DEFG", 8));
    EXPECT_EQ(QXStrToLowerUTF16(text.data()), text.data());
    EXPECT_EQ(std::u16string(text.begin(), text.end()), std::u16string(u"abc\0deFG", 8));
    EXPECT_EQ(QXStrToUpperUTF16(text.data()), text.data());
    EXPECT_EQ(std::u16string(text.begin(), text.end()), std::u16string(u"ABC\0DEFG", 8));
    auto sharp = ExactUnits(std::u16string(u"\u00DFa\0bc", 5));
    QXStrToUpperUTF16(sharp.data());
    EXPECT_EQ(std::u16string(sharp.begin(), sharp.end()), std::u16string(u"SSA\0c", 5));
    auto empty = ExactText<char16_t>(u"");
    EXPECT_EQ(QXStrToLowerUTF16(empty.data()), empty.data());
}

}  // namespace

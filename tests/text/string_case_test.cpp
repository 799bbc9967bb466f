#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <string>

#include "support/exact_text.h"
#include "support/known_differences.h"

namespace {

TEST(StringCase, NarrowUnitsFollowAsciiAndNothingElse) {
    for (int code = kNarrowTextIsUtf8 ? -128 : 0; code < 128; ++code) {
        SCOPED_TRACE(code);
        const auto unit = static_cast<signed char>(code);
        const bool isUpper = code >= 'A' && code <= 'Z';
        const bool isLower = code >= 'a' && code <= 'z';
        EXPECT_EQ(QXToLowerA(unit), isUpper ? code + 32 : code);
        EXPECT_EQ(QXToUpperA(unit), isLower ? code - 32 : code);
        EXPECT_EQ(QXIsAlphaA(unit) != 0, isUpper || isLower);
        EXPECT_EQ(QXIsDigitA(unit) != 0, code >= '0' && code <= '9');
        EXPECT_EQ(QXIsSpaceA(unit), code == 32 || (code >= 9 && code <= 13));
    }
}

TEST(StringCase, WideUnitsFollowTheLocaleAboveAscii) {
    ASSERT_TRUE(UseLocaleOfWideLetters());
    for (const wchar unit : {u'@', u'A', u'Z', u'[', u'\v', u'\x0E', u'7', u'\x7F'}) {
        const auto narrow = static_cast<signed char>(unit);
        EXPECT_EQ(QXToLowerW(unit), static_cast<uint32_t>(QXToLowerA(narrow)));
        EXPECT_EQ(QXIsAlphaW(unit) != 0, QXIsAlphaA(narrow) != 0);
        EXPECT_EQ(QXIsDigitW(unit) != 0, QXIsDigitA(narrow) != 0);
        EXPECT_EQ(QXIsSpaceW(unit), QXIsSpaceA(narrow));
    }
    EXPECT_EQ(QXToUpperW(u'z'), u'Z');
    EXPECT_EQ(QXToUpperW(0x436), 0x416u);
    EXPECT_EQ(QXToLowerW(0x416), 0x436u);
    EXPECT_EQ(QXToLowerW(0xD800), 0xD800u);
    EXPECT_TRUE(QXIsAlphaW(0x137) != 0 && QXIsDigitW(0x137) == 0);
    EXPECT_NE(QXIsSpaceW(0x2003), 0);
}

TEST(StringCase, TextIsMappedInPlaceWhateverItsLength) {
    std::string mixed, lower, upper;
    for (size_t length = 0; length <= 150; ++length) {
        auto narrow = ExactText(mixed);
        EXPECT_EQ(QXStrToLowerA(narrow.data()), lower);
        EXPECT_EQ(narrow.data(), lower);
        EXPECT_EQ(QXStrToUpperA(narrow.data()), upper);
        auto wide = ExactText(Widen(mixed));
        EXPECT_EQ(QXStrToLowerW(wide.data()), Widen(lower));
        EXPECT_EQ(wide.data(), Widen(lower));
        EXPECT_EQ(QXStrToUpperW(wide.data()), Widen(upper));
        mixed += "Az@[`{ 09~"[length % 10];
        lower += "az@[`{ 09~"[length % 10];
        upper += "AZ@[`{ 09~"[length % 10];
    }
}

TEST(StringCase, RestBehindHighUnitIsMappedToo) {
    ASSERT_TRUE(UseLocaleOfWideLetters());
    auto wide = ExactText<char16_t>(u"AB\xC4YZ\x416\xD800");
    EXPECT_EQ(QXStrToLowerW(wide.data()), std::u16string(u"ab\xE4yz\x436\xD800"));
    EXPECT_EQ(QXStrToUpperW(wide.data()), std::u16string(u"AB\xC4YZ\x416\xD800"));
    UseLocaleOfNarrowLetters();
    auto narrow = ExactText<char>("AB\xC3\x84YZ\xFF");
    EXPECT_STREQ(QXStrToLowerA(narrow.data()), "ab\xC3\x84yz\xFF");
    EXPECT_STREQ(QXStrToUpperA(narrow.data()), "AB\xC3\x84YZ\xFF");
}

TEST(StringCase, Utf16MembersMapTwiceTheLength) {
    const auto mapped = [](const std::u16string& text, wchar* (*map)(wchar*)) {
        auto units = ExactUnits(text);
        EXPECT_EQ(map(units.data()), units.data());
        return std::u16string(units.begin(), units.end());
    };
    EXPECT_EQ(mapped({u"ABC\0DEFG", 8}, QXStrToLowerUTF16), std::u16string(u"abc\0deFG", 8));
    EXPECT_EQ(mapped({u"abc\0defg", 8}, QXStrToUpperUTF16), std::u16string(u"ABC\0DEfg", 8));
    EXPECT_EQ(mapped({u"\u00DFa\0bc", 5}, QXStrToUpperUTF16), std::u16string(u"SSA\0c", 5));
}

}  // namespace

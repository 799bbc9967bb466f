#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <string>
#include <vector>

#include "support/exact_text.h"

namespace {

constexpr std::ptrdiff_t kNowhere = -1;

template <typename Unit>
std::ptrdiff_t Place(const Unit* found, const std::vector<Unit>& text) {
    return found != nullptr ? found - text.data() : kNowhere;
}

TEST(StringSearch, NarrowUnitsAreFoundFromBothEnds) {
    const auto text = ExactText<char>("a\xE9-\xE9");
    EXPECT_EQ(Place(QXStrChrA(text.data(), '\xE9'), text), 1);
    EXPECT_EQ(Place(QXStrRChrA(text.data(), '\xE9'), text), 3);
    EXPECT_EQ(Place(QXStrRChrA(text.data(), '\0'), text), 4);
    EXPECT_EQ(QXStrChrA(text.data(), 'b'), nullptr);
}

TEST(StringSearch, SurrogatePairsAreWholeForUtf16MembersAlone) {
    const auto text = ExactText<char16_t>(u"a\xD83D\xDE00\x0062\xDE00\xD83D\xDE00");
    EXPECT_EQ(Place(QXStrChrW(text.data(), 0xDE00), text), 2);
    EXPECT_EQ(Place(QXStrRChrW(text.data(), 0xDE00), text), 6);
    EXPECT_EQ(Place(QXStrChrUCS2(text.data(), 0xDE00), text), 4);
    EXPECT_EQ(Place(QXStrRChrUCS2(text.data(), 0xDE00), text), 4);
    EXPECT_EQ(Place(QXStrChrUTF16(text.data(), 0x1F600), text), 1);
    EXPECT_EQ(Place(QXStrRChrUTF16(text.data(), 0x1F600), text), 5);
    EXPECT_EQ(Place(QXStrStrW(text.data(), u"\xDE00"), text), 2);
    EXPECT_EQ(Place(QXStrStrUTF16(text.data(), u"\xDE00"), text), 4);
}

TEST(StringSearch, TextIsFoundInText) {
    struct Case {
        std::u16string text, sought;
        std::ptrdiff_t place;
    };
    for (const Case& each : {Case{u"", u"", 0},
                             {u"", u"a", kNowhere},
                             {u"abc", u"abcd", kNowhere},
                             {u"ababac", u"abac", 2},
                             {std::u16string(39, u'8') + u"9x", u"9x", 39}}) {
        const auto text = ExactText(each.text);
        const auto sought = ExactText(each.sought);
        EXPECT_EQ(Place(QXStrStrW(text.data(), sought.data()), text), each.place);
        EXPECT_EQ(Place(QXStrStrUTF16(text.data(), sought.data()), text), each.place);
    }
    EXPECT_STREQ(QXStrStrA("ababac", "abac"), "abac");
}

// The tokens with a bar behind each.
template <typename Unit, typename Next>
std::basic_string<Unit> Tokens(std::basic_string<Unit> text, const Unit* delimiters, Next next) {
    std::basic_string<Unit> tokens;
    Unit* cursor = text.data();
    while (const Unit* const token = next(&cursor, delimiters)) {
        tokens += token + std::basic_string<Unit>(1, '|');
    }
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(next(&cursor, delimiters), nullptr);
    return tokens;
}

TEST(StringTokens, RunsOfDelimitersGiveNoEmptyTokens) {
    EXPECT_EQ(Tokens<char>(",,a,b", ",", QXStrTokA), "a|b|");
    EXPECT_EQ(Tokens<char>(",,,", ",", QXStrTokA), "");
    EXPECT_EQ(Tokens<char>("a,", ",", QXStrTokA), "a|");
    EXPECT_EQ(Tokens<char>("a b", "", QXStrTokA), "a b|");
    EXPECT_EQ(Tokens<char>("\xE9,\xE9", "\xE9", QXStrTokA), ",|");
    EXPECT_EQ(Tokens<wchar>(u"a;b ,\u0161", u", ;", QXStrTokW), u"a|b|\u0161|");
}

TEST(StringTokens, CursorStandsBehindTheOverwrittenDelimiter) {
    auto text = ExactText<char>("ab,,c");
    char* cursor = text.data();
    EXPECT_EQ(QXStrTokA(&cursor, ","), text.data());
    EXPECT_EQ(cursor, text.data() + 3);
    EXPECT_EQ(std::string(text.begin(), text.end()), std::string("ab\0,c\0", 6));
}

}  // namespace

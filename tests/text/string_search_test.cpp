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
        const char* text;
        const char* sought;
        std::ptrdiff_t place;
    };
    for (const Case& each : {Case{"", "", 0},
                             {"", "a", kNowhere},
                             {"abc", "abcd", kNowhere},
                             {"ababac", "abac", 2},
                             {"0123456789012345678901234567890123456789x", "9x", 39}}) {
        SCOPED_TRACE(std::string(each.text) + " " + each.sought);
        const auto narrow = ExactText<char>(each.text);
        EXPECT_EQ(Place(QXStrStrA(narrow.data(), each.sought), narrow), each.place);
        const auto wide = ExactText(Widen(each.text));
        const auto sought = ExactText(Widen(each.sought));
        EXPECT_EQ(Place(QXStrStrW(wide.data(), sought.data()), wide), each.place);
        EXPECT_EQ(Place(QXStrStrUTF16(wide.data(), sought.data()), wide), each.place);
    }
}

// The tokens with a bar behind each.
template <typename Unit, typename Next>
std::basic_string<Unit> Tokens(std::vector<Unit> text, const std::basic_string<Unit>& delimiters,
                               Next next) {
    std::basic_string<Unit> tokens;
    Unit* cursor = text.data();
    while (const Unit* const token = next(&cursor, delimiters.c_str())) {
        tokens += token + std::basic_string<Unit>(1, '|');
    }
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(next(&cursor, delimiters.c_str()), nullptr);
    return tokens;
}

TEST(StringTokens, RunsOfDelimitersGiveNoEmptyTokens) {
    struct Case {
        std::string text, delimiters, tokens;
    };
    for (const Case& each : {Case{",,a,b", ",", "a|b|"},
                             {",,,", ",", ""},
                             {"a,", ",", "a|"},
                             {"a;b ,c", ", ;", "a|b|c|"},
                             {"a b", "", "a b|"},
                             {"\xE9,\xE9", "\xE9", ",|"}}) {
        EXPECT_EQ(Tokens(ExactText(each.text), each.delimiters, QXStrTokA), each.tokens);
        EXPECT_EQ(Tokens(ExactText(Widen(each.text)), Widen(each.delimiters), QXStrTokW),
                  Widen(each.tokens));
    }
}

TEST(StringTokens, CursorStandsBehindTheOverwrittenDelimiter) {
    auto text = ExactText<char>("ab,,c");
    char* cursor = text.data();
    EXPECT_EQ(QXStrTokA(&cursor, ","), text.data());
    EXPECT_EQ(cursor, text.data() + 3);
    EXPECT_EQ(std::string(text.begin(), text.end()), std::string("ab\0,c\0", 6));
}

}  // namespace

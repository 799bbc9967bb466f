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

TEST(StringSearch, UnitsAreFoundFromBothEnds) {
    const std::string longText = std::string(50, 'a') + "b" + std::string(50, 'a');
    struct Case {
        std::string text;
        char unit;
        std::ptrdiff_t first, last;
    };
    for (const Case& each : {Case{"", 'a', kNowhere, kNowhere},
                             {"", '\0', 0, 0},
                             {"abcabc", 'b', 1, 4},
                             {"abcabc", 'd', kNowhere, kNowhere},
                             {"abcabc", '\0', 6, 6},
                             {longText, 'b', 50, 50},
                             {longText, 'a', 0, 100},
                             {longText, '\0', 101, 101}}) {
        SCOPED_TRACE(each.text + " " + each.unit);
        const auto narrow = ExactText<char>(each.text);
        EXPECT_EQ(Place(QXStrChrA(narrow.data(), each.unit), narrow), each.first);
        EXPECT_EQ(Place(QXStrRChrA(narrow.data(), each.unit), narrow), each.last);
        const auto wide = ExactText(Widen(each.text));
        const auto unit = static_cast<char16_t>(each.unit);
        EXPECT_EQ(Place(QXStrChrW(wide.data(), unit), wide), each.first);
        EXPECT_EQ(Place(QXStrRChrW(wide.data(), unit), wide), each.last);
        EXPECT_EQ(Place(QXStrChrUCS2(wide.data(), unit), wide), each.first);
        EXPECT_EQ(Place(QXStrRChrUCS2(wide.data(), unit), wide), each.last);
        EXPECT_EQ(Place(QXStrChrUTF16(wide.data(), unit), wide), each.first);
        EXPECT_EQ(Place(QXStrRChrUTF16(wide.data(), unit), wide), each.last);
    }
    const auto high = ExactText<char>("a\xE9");
    EXPECT_EQ(Place(QXStrChrA(high.data(), '\xE9'), high), 1);
    const auto wide = ExactText<char16_t>(u"\u3041A");
    EXPECT_EQ(Place(QXStrChrW(wide.data(), u'A'), wide), 1);
}

TEST(StringSearch, SurrogatePairsAreWholeForUtf16MembersAlone) {
    const auto text = ExactText<char16_t>(u"a\xD83D\xDE00\x0062\xDE00\xD83D\xDE00");
    EXPECT_EQ(Place(QXStrChrW(text.data(), 0xDE00), text), 2);
    EXPECT_EQ(Place(QXStrRChrW(text.data(), 0xDE00), text), 6);
    EXPECT_EQ(Place(QXStrChrUCS2(text.data(), 0xDE00), text), 4);
    EXPECT_EQ(Place(QXStrRChrUCS2(text.data(), 0xDE00), text), 4);
    EXPECT_EQ(Place(QXStrChrUTF16(text.data(), 0x1F600), text), 1);
    EXPECT_EQ(Place(QXStrRChrUTF16(text.data(), 0x1F600), text), 5);
    for (const uint32_t beyond : {0x110000u, 0xFFFFFFFFu, 0x80000061u}) {
        EXPECT_EQ(QXStrChrUTF16(text.data(), beyond), nullptr);
        EXPECT_EQ(QXStrRChrUTF16(text.data(), beyond), nullptr);
    }
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
                             {"abc", "", 0},
                             {"", "a", kNowhere},
                             {"abc", "abc", 0},
                             {"abc", "abcd", kNowhere},
                             {"aaab", "aab", 1},
                             {"ababac", "abac", 2},
                             {"abcabc", "c", 2},
                             {"ab", "b\x01", kNowhere},
                             {"0123456789012345678901234567890123456789x", "9x", 39}}) {
        SCOPED_TRACE(std::string(each.text) + " " + each.sought);
        const auto narrow = ExactText<char>(each.text);
        EXPECT_EQ(Place(QXStrStrA(narrow.data(), ExactText<char>(each.sought).data()), narrow),
                  each.place);
        const auto wide = ExactText(Widen(each.text));
        const auto sought = ExactText(Widen(each.sought));
        EXPECT_EQ(Place(QXStrStrW(wide.data(), sought.data()), wide), each.place);
        EXPECT_EQ(Place(QXStrStrUTF16(wide.data(), sought.data()), wide), each.place);
    }
}

template <typename Unit, typename Next>
std::vector<std::basic_string<Unit>> Tokens(std::vector<Unit> text, const Unit* delimiters,
                                            Next next) {
    std::vector<std::basic_string<Unit>> tokens;
    Unit* cursor = text.data();
    while (const Unit* const token = next(&cursor, delimiters)) {
        tokens.emplace_back(token);
    }
    EXPECT_EQ(cursor, nullptr);
    EXPECT_EQ(next(&cursor, delimiters), nullptr);
    return tokens;
}

TEST(StringTokens, RunsOfDelimitersGiveNoEmptyTokens) {
    struct Case {
        const char* text;
        const char* delimiters;
        std::vector<std::string> tokens;
    };
    for (const Case& each : {Case{",,a,b", ",", {"a", "b"}},
                             {",,,", ",", {}},
                             {"", ",", {}},
                             {"a,", ",", {"a"}},
                             {"a;b ,c", ", ;", {"a", "b", "c"}},
                             {"a b", "", {"a b"}},
                             {"\xE9,\xE9", "\xE9", {","}}}) {
        EXPECT_EQ(Tokens(ExactText<char>(each.text), each.delimiters, QXStrTokA), each.tokens);
        std::vector<std::u16string> wideTokens;
        for (const std::string& token : each.tokens) {
            wideTokens.push_back(Widen(token));
        }
        const std::u16string wideDelimiters = Widen(each.delimiters);
        EXPECT_EQ(Tokens(ExactText(Widen(each.text)), wideDelimiters.c_str(), QXStrTokW),
                  wideTokens);
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

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

#include "support/wide_format.h"

namespace {

template <typename... Values>
std::u16string Format(const char16_t* format, Values... values) {
    const Formatted formatted = FormatInto(200, format, values...);
    EXPECT_EQ(formatted.m_text.size(), static_cast<size_t>(formatted.m_result) + 1);
    return formatted.m_text.substr(0, formatted.m_text.size() - 1);
}

TEST(WideFormat, PrefixesTellWideFromNarrowText) {
    EXPECT_EQ(u"wide wide narrow narrow wide|",
              Format(u"%s %ls %hs %S %ws|", u"wide", u"wide", "narrow", "narrow", u"wide"));
    EXPECT_EQ(u"a b c d e", Format(u"%c %lc %hc %C %lC", 'a', 'b', 'c', 'd', 'e'));
    EXPECT_EQ(u"(null)(null)(nu", Format(u"%s%hs%.3s", nullptr, nullptr, nullptr));
}

TEST(WideFormat, WidthAndPrecisionCountUnits) {
    EXPECT_EQ(u"[   ab][ab   ][ab][ a]",
              Format(u"[%5s][%-5s][%1s][%*.*s]", u"ab", u"ab", u"ab", 2, 1, u"ab"));
    EXPECT_EQ(u"[   ab][ab   ][a][  x]",
              Format(u"[%5hs][%*hs][%.1hs][%3c]", "ab", -5, "ab", "ab", 'x'));
    EXPECT_EQ(u"[abc]", Format(u"[%.*s]", -1, u"abc"));
    const char16_t noTerminator[] = {u'a', u'b'};
    EXPECT_EQ(u"ab", Format(u"%.2ls", noTerminator));
}

TEST(WideFormat, NumbersComeInTheirWidths) {
    EXPECT_EQ(u"-1 4294967295 65535", Format(u"%d %u %hu", -1, -1, -1));
    EXPECT_EQ(u"-2147483648 ffffffff", Format(u"%I32d %I32x", INT32_MIN, -1));
    EXPECT_EQ(u"-9223372036854775808 18446744073709551615",
              Format(u"%I64d %llu", INT64_MIN, UINT64_MAX));
    EXPECT_EQ(u"-7 7", Format(u"%ld %lu", -7L, 7UL));
    EXPECT_EQ(u"0x2a 0X2A 052 +42  42 00042 42   |",
              Format(u"%#x %#X %#o %+d % d %05d %-5d|", 42, 42, 42, 42, 42, 42, 42));
    EXPECT_EQ(u"1.50 2.5", Format(u"%.2f %g", 1.5, 2.5));
    EXPECT_EQ(u"00000000DEADBEEF", Format(u"%p", reinterpret_cast<void*>(0xDEADBEEF)));
}

TEST(WideFormat, IllFormedTextAndUnknownConversionsPassUnchanged) {
    EXPECT_EQ(u"100% y", Format(u"100%% %y"));
    const char16_t text[] = {0xDC00, u'a', 0xD800, 0};
    EXPECT_EQ(text, Format(u"%ls", text));
}

TEST(WideFormat, LongTextIsCutAtTheBuffersEnd) {
    const std::u16string longText(50, u'x');
    for (const auto& [format, start] : {std::pair{u"%ls", u"xxxx"},
                                        {u"ab%ls", u"abxx"},
                                        {u"%60ls", u"    "},
                                        {u"abcde", u"abcd"}}) {
        EXPECT_EQ((Formatted{-1, start}), FormatInto(4, format, longText.c_str()));
    }
    EXPECT_EQ((Formatted{4, u"1234"}), FormatInto(4, u"%d", 1234));
    EXPECT_EQ((Formatted{-1, u"a"}), FormatInto(1, u"a%d", 12));
}

}  // namespace

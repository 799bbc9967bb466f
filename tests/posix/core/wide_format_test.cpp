// Where the back end's formatter knows the C compiler's types, and bounds its work.
#include <gtest/gtest.h>

#include "support/wide_format.h"

namespace {

TEST(OwnWideFormat, NumbersHaveTheCompilersTypes) {
    const Formatted formatted = FormatInto(40, u"%hhu %Lg %ld|", -1, -0.25L, -5'000'000'000L);
    EXPECT_EQ(u"255 -0.25 -5000000000|", std::u16string(formatted.m_text.c_str()));
}

TEST(OwnWideFormat, WorkEndsWithTheBuffer) {
    for (const char16_t* const format : {u"%2147483647d", u"%02147483647d", u"%.2147483647d"}) {
        const Formatted formatted = FormatInto(4, format, 1);
        EXPECT_EQ(-1, formatted.m_result);
        EXPECT_EQ(4u, formatted.m_text.size());
    }
}

}  // namespace

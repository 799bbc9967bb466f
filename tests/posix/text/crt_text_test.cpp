#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <clocale>
#include <cstdlib>
#include <string>

#include "support/exact_text.h"
#include "support/temporary_directory.h"

namespace {

// Constants are in memory that may not be written to.
TEST(CaseMapping, DoesNotWriteToTextThatHasNothingToChange) {
    ASSERT_NE(std::setlocale(LC_ALL, "C.UTF-8"), nullptr);
    static constexpr char kNarrow[] = "nothing to change in here, for sure, d\u00E9j\u00E0 vu";
    static constexpr char16_t kWide[] = u"NOTHING TO CHANGE IN HERE, D\u00C9J\u00C0 VU \u65E5";
    EXPECT_EQ(QXStrToLowerA(const_cast<char*>(kNarrow)), kNarrow);
    EXPECT_EQ(QXStrToUpperW(const_cast<char16_t*>(kWide)), kWide);
}

// A locale that is made for the occasion, in which "I" and "i" are no pair.
TEST(TurkishLocale, AsciiLettersArePairsAndTheCommaIsTheDecimalPoint) {
    const TemporaryDirectory directory;
    const std::string make =
        "localedef -c -i tr_TR -f UTF-8 " + directory.Path().string() + "/tr_TR.UTF-8 2>/dev/null";
    if (std::system(make.c_str()) != 0) {
        GTEST_SKIP() << "no sources of locales";
    }
    ::setenv("LOCPATH", directory.Path().c_str(), 1);
    ASSERT_NE(std::setlocale(LC_ALL, "tr_TR.UTF-8"), nullptr);
    EXPECT_EQ(QXStrICmpW(u"FILE", u"file"), 0);
    EXPECT_EQ(QXStrNICmpW(u"FILE", u"file", 4), 0);
    for (const char16_t* before : {u"", u"\u0130", u"\xC4"}) {
        const std::u16string prefix(before);
        auto text = ExactText(prefix + u"Ii");
        EXPECT_EQ(std::u16string(QXStrToLowerW(text.data())).substr(prefix.size()), u"ii");
        EXPECT_EQ(std::u16string(QXStrToUpperW(text.data())).substr(prefix.size()), u"II");
    }
    EXPECT_EQ(QXToUpperW(u'\u0131'), u'I');
    EXPECT_EQ(QXStrToDW(u"1,5", nullptr), 1.5);
    EXPECT_EQ(QXStrToDA("1.5", nullptr), 1.0);
}

}  // namespace

#include <gtest/gtest.h>
#include <qxcore/locale.h>
#include <unicode/uloc.h>

#include <map>
#include <set>
#include <string>

#include "support/exact_block.h"
#include "text/locale_names.h"

namespace {

TEST(LocaleName, IsAFunctionOfTheWholeNumber) {
    const std::map<uint32_t, std::string> kRows = {
        {0x0000, "root"},
        {0x0001, "ar"},
        {0x0009, "en"},
        {0x0014, "nb"},
        {0x0057, "kok"},
        {0x0065, "div"},
        {0x007F, "en_US_POSIX"},
        {0x0409, "en_US"},
        {0x040A, "es__TRADITIONAL"},
        {0x0414, "nb_NO"},
        {0x042C, "az_AZ_L"},
        {0x0443, "uz_UZ_L"},
        {0x0465, "div_MV"},
        {0x0814, "nn_NO"},
        {0x081A, "sh_YU"},
        {0x0861, "ne_IN"},
        {0x0C0A, "es_ES"},
        {0x0C1A, "sr_YU"},
        {0x1001, "ar_LY"},
        {0x2409, "en_VI"},
        {0x500A, "es_PR"},
        {0x10407, "de__PHONEBOOK"},
        {0x0017, "en_US"},
        {0x0417, "en_US"},
        {0x1000, "en_US"},
        {0x10409, "en_US"},
        {0x12345, "en_US"},
        {0x80000409, "en_US"},
        {0xFFFFFFFF, "en_US"},
    };
    for (const auto& [number, name] : kRows) {
        EXPECT_EQ(name, QXLocaleNameFromLCID(number)) << std::hex << number;
    }
    std::set<std::string> names;
    size_t rows = 1;  // the one whose name is that of all others
    for (uint32_t number = 0; number <= 0x1FFFF; ++number) {
        const std::string name = QXLocaleNameFromLCID(number);
        rows += name != "en_US" ? 1 : 0;
        names.insert(name);
    }
    EXPECT_EQ(225u, rows);
    EXPECT_EQ(225u, names.size());
    // A row with a sublanguage has the language of the row without one.
    for (uint32_t number = 0x400; number <= 0x1FFFF; ++number) {
        const std::string name = QXLocaleNameFromLCID(number);
        if (name != "en_US" && name.compare(0, 2, "nn") != 0 && name.substr(2, 3) != "_YU") {
            const std::string language = QXLocaleNameFromLCID(number & 0x3FF);
            EXPECT_EQ(language, name.substr(0, name.find('_'))) << std::hex << number;
        }
    }
}

struct LocaleRow {
    const char* locale;
    std::u16string name;
};

TEST(DefaultLocale, IsTheProcessesOwnAndFitsEveryBuffer) {
    const LocaleRow kRows[] = {{"en_US", u"en_US"},
                               {"de_AT", u"de_AT"},
                               {"en_US_POSIX", u"en_US_POSIX"},
                               {"ja", u"ja"},
                               {"de@collation=phonebook", u"de__PHONEBOOK"},
                               {"xx_YY", u"en_US"}};
    for (const LocaleRow& row : kRows) {
        UErrorCode status = U_ZERO_ERROR;
        uloc_setDefault(row.locale, &status);
        for (size_t size = 0; size <= row.name.size() + 4; ++size) {
            ExactBlock<char16_t> buffer(size);
            const std::u16string untouched = buffer.Content();
            const QXResult result = QXGetDefaultLocale(buffer.Begin(), static_cast<int32_t>(size));
            if (size > row.name.size()) {
                EXPECT_EQ(QX_S_OK, result) << row.locale;
                EXPECT_EQ(row.name + std::u16string(size - row.name.size(), u'\0'),
                          buffer.Content());
            } else {
                EXPECT_EQ(QX_E_BUFFERTOOSMALL, result);
                EXPECT_EQ(untouched, buffer.Content());
            }
        }
    }
}

TEST(DefaultEncoding, NeedsEightUnits) {
    for (const int32_t size : {INT32_MIN, -1, 0, 6, 7}) {
        EXPECT_EQ(QX_E_BUFFERTOOSMALL, QXGetDefaultCharEncoding(nullptr, size));
    }
    ExactBlock<char16_t> buffer(8);
    EXPECT_EQ(QX_S_OK, QXGetDefaultCharEncoding(buffer.Begin(), 8));
    EXPECT_STREQ("UTF-8", std::string(buffer.Begin(), buffer.Begin() + 6).c_str());
    const std::map<uint32_t, std::u16string> kPages = {{65001, u"UTF-8"},
                                                       {932, u"CP932"},
                                                       {1252, u"CP1252"},
                                                       {65535, u"CP65535"},
                                                       {0x10000 + 437, u"CP437"}};
    for (const auto& [page, name] : kPages) {
        WriteCodePageName(page, buffer.Begin(), 8);
        EXPECT_EQ(name, buffer.Begin()) << page;
    }
}

}  // namespace

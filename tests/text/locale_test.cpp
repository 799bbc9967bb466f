#include <gtest/gtest.h>
#include <qxcore/locale.h>
#include <unicode/uloc.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/locale.h"
#include "support/exact_text.h"
#include "support/known_differences.h"
#include "text/locale_names.h"

namespace {

TEST(LocaleName, IsAFunctionOfTheWholeNumber) {
    const std::map<uint32_t, std::string> kRows = {
        {0x0000, "root"},        {0x0009, "en"},    {0x0014, "nb"},
        {0x007F, "en_US_POSIX"}, {0x0409, "en_US"}, {0x040A, "es__TRADITIONAL"},
        {0x042C, "az_AZ_L"},     {0x0814, "nn_NO"}, {0x0C0A, "es_ES"},
        {0x0C1A, "sr_YU"},       {0x500A, "es_PR"}, {0x10407, "de__PHONEBOOK"},
        {0x0017, "en_US"},       {0x0417, "en_US"}, {0x12345, "en_US"},
        {0x80000409, "en_US"}};
    for (const auto& [number, name] : kRows) {
        EXPECT_EQ(name, QXLocaleNameFromLCID(number)) << std::hex << number;
    }
    std::set<std::string> names;
    size_t rows = 1;  // the one whose name is that of all others
    // Holds each name at its number.
    constexpr uint64_t kHashOfAllRows = 0x6B2BD5331FA53A07;
    uint64_t hash = 0xCBF29CE484222325;
    for (uint32_t number = 0; number <= 0x1FFFF; ++number) {
        const std::string name = QXLocaleNameFromLCID(number);
        rows += name != "en_US" ? 1 : 0;
        names.insert(name);
        for (const char unit : name != "en_US" ? std::to_string(number) + name : "") {
            hash = (hash ^ static_cast<unsigned char>(unit)) * 0x100000001B3;
        }
    }
    EXPECT_EQ(225u, rows);
    EXPECT_EQ(225u, names.size());
    EXPECT_EQ(kHashOfAllRows, hash) << std::hex << hash;
}

struct LocaleRow {
    const char* locale;
    std::u16string name;
};

TEST(DefaultLocale, IsTheProcessesOwnAndFitsEveryBuffer) {
    std::vector<LocaleRow> rows = {{"en_US", u"en_US"},
                                   {"de_AT", u"de_AT"},
                                   {"en_US_POSIX", u"en_US_POSIX"},
                                   {"ja", u"ja"},
                                   {"de@collation=phonebook", u"de__PHONEBOOK"},
                                   {"xx_YY", u"en_US"}};
    if (!kLocaleIsOfIcu) {
        const std::string name = QXLocaleNameFromLCID(platform::GetUserDefaultLCID());
        rows = {{"", {name.begin(), name.end()}}};
    }
    for (const LocaleRow& row : rows) {
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
    const std::string page = "CP" + std::to_string(platform::GetACP());
    EXPECT_EQ(kNarrowTextIsUtf8 ? "UTF-8" : page,
              std::string(buffer.Begin(), std::find(buffer.Begin(), buffer.Begin() + 8, u'\0')));
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

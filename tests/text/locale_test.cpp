#include <gtest/gtest.h>
#include <qxcore/locale.h>
#include <unicode/uloc.h>

#include <map>
#include <string>

#include "platform/locale.h"
#include "support/exact_text.h"
#include "support/known_differences.h"
#include "text/locale_names.h"

namespace {

TEST(LocaleName, IsAFunctionOfTheWholeNumber) {
    EXPECT_STREQ("en_US", QXLocaleNameFromLCID(0x0409));
    EXPECT_STREQ("de__PHONEBOOK", QXLocaleNameFromLCID(0x10407));
    EXPECT_STREQ("en_US", QXLocaleNameFromLCID(0x80000409));
    // Holds each name at its number.
    constexpr uint64_t kHashOfAllRows = 0x6B2BD5331FA53A07;
    uint64_t hash = 0xCBF29CE484222325;
    for (uint32_t number = 0; number <= 0x1FFFF; ++number) {
        const std::string name = QXLocaleNameFromLCID(number);
        for (const char unit : name != "en_US" ? std::to_string(number) + name : "") {
            hash = (hash ^ static_cast<unsigned char>(unit)) * 0x100000001B3;
        }
    }
    EXPECT_EQ(kHashOfAllRows, hash) << std::hex << hash;
}

TEST(DefaultLocale, IsTheProcessesOwnAndFitsEveryBuffer) {
    std::map<std::string, std::u16string> names = {{"en_US_POSIX", u"en_US_POSIX"},
                                                   {"de@collation=phonebook", u"de__PHONEBOOK"},
                                                   {"xx_YY", u"en_US"}};
    if (!kLocaleIsOfIcu) {
        const std::string name = QXLocaleNameFromLCID(platform::GetUserDefaultLCID());
        names = {{"", {name.begin(), name.end()}}};
    }
    for (const auto& [locale, name] : names) {
        UErrorCode status = U_ZERO_ERROR;
        uloc_setDefault(locale.c_str(), &status);
        for (size_t size = 0; size <= name.size() + 4; ++size) {
            ExactBlock<char16_t> buffer(size);
            const bool fits = size > name.size();
            const std::u16string expected =
                fits ? name + std::u16string(size - name.size(), u'\0') : buffer.Content();
            EXPECT_EQ(fits ? QX_S_OK : QX_E_BUFFERTOOSMALL,
                      QXGetDefaultLocale(buffer.Begin(), static_cast<int32_t>(size)));
            EXPECT_EQ(expected, buffer.Content());
        }
    }
}

TEST(DefaultEncoding, NeedsEightUnits) {
    EXPECT_EQ(QX_E_BUFFERTOOSMALL, QXGetDefaultCharEncoding(nullptr, -1));
    EXPECT_EQ(QX_E_BUFFERTOOSMALL, QXGetDefaultCharEncoding(nullptr, 7));
    ExactBlock<char16_t> buffer(8);
    EXPECT_EQ(QX_S_OK, QXGetDefaultCharEncoding(buffer.Begin(), 8));
    const std::string page = "CP" + std::to_string(platform::GetACP());
    EXPECT_EQ(Widen(kNarrowTextIsUtf8 ? "UTF-8" : page), buffer.Begin());
    for (const auto& [number, name] : std::map<uint32_t, std::u16string>{
             {65001, u"UTF-8"}, {932, u"CP932"}, {0x10000 + 437, u"CP437"}}) {
        WriteCodePageName(number, buffer.Begin(), 8);
        EXPECT_EQ(name, buffer.Begin());
    }
}

}  // namespace

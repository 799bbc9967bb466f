#include <gtest/gtest.h>
#include <qxcore/guid.h>

#include <cstdio>
#include <cstring>
#include <set>
#include <string>

#include "support/child_role.h"
#include "support/exact_text.h"

namespace {

constexpr GUID kSample = {
    0x01234567, 0x89AB, 0xCDEF, {0xFE, 0xDC, 0xBA, 0x98, 0x76, 0x54, 0x32, 0x10}};
constexpr char16_t kSampleText[] = u"{01234567-89AB-CDEF-FEDC-BA9876543210}";

std::u16string TextOf(const GUID& guid) {
    char16_t text[QX_GUID_TEXT_SIZE];
    EXPECT_EQ(QX_S_OK, QXComStringFromGUID(&guid, text, QX_GUID_TEXT_SIZE));
    return text;
}

TEST(Guid, TextIsReadAndWritten) {
    struct Row {
        const char16_t* text;
        const char16_t* canonical;  // null where the text is refused
    };
    constexpr Row kRows[] = {
        {kSampleText, kSampleText},
        {u"01234567-89ab-CDEF-fedc-BA9876543210", kSampleText},
        {u"01234567-89ab-CDEF-fedc-BA9876543210}", kSampleText},
        {u"01234567-89ab-CDEF-fedc-BA9876543210 and more", kSampleText},
        {u"{01234567-89ab-CDEF-fedc-BA9876543210}tail", kSampleText},
        {u"00000000-0000-0000-0000-000000000000", u"{00000000-0000-0000-0000-000000000000}"},
        {u"", nullptr},
        {u"01234567-89ab-CDEF-fedc-BA987654321", nullptr},
        {u"{01234567-89ab-CDEF-fedc-BA9876543210", nullptr},
        {u"{01234567-89ab-CDEF-fedc-BA9876543210 }", nullptr},
        {u"0123456789ab-CDEF-fedc-BA9876543210--", nullptr},
        {u"01234567-89ag-CDEF-fedc-BA9876543210", nullptr},
        {u"01234567-89a\u0130-CDEF-fedc-BA9876543210", nullptr},
        {u"{{1234567-89ab-CDEF-fedc-BA9876543210}", nullptr},
    };
    for (const Row& row : kRows) {
        GUID guid;
        std::memset(&guid, 0x5A, sizeof guid);
        const GUID untouched = guid;
        const QXResult result = QXComGUIDFromString(row.text, &guid);
        if (row.canonical != nullptr) {
            EXPECT_EQ(QX_S_OK, result);
            EXPECT_EQ(row.canonical, TextOf(guid));
        } else {
            EXPECT_EQ(QX_E_INVALIDARG, result);
            EXPECT_TRUE(QXComIsEqualGUID(&untouched, &guid));
        }
    }
    GUID guid;
    QXComGUIDFromString(kSampleText, &guid);
    EXPECT_TRUE(QXComIsEqualGUID(&kSample, &guid));
}

TEST(Guid, TextIsCutAtTheEndOfAShortBuffer) {
    for (int32_t length = 0; length <= QX_GUID_TEXT_SIZE; ++length) {
        std::u16string buffer(QX_GUID_TEXT_SIZE + 1, u'#');
        EXPECT_EQ(QX_S_OK, QXComStringFromGUID(&kSample, buffer.data(), length));
        const auto units = static_cast<size_t>(length);
        EXPECT_EQ(std::u16string(kSampleText, QX_GUID_TEXT_SIZE).substr(0, units),
                  buffer.substr(0, units));
        EXPECT_EQ(std::u16string::npos, buffer.find_first_not_of(u'#', units));
    }
}

TEST(Guid, OrderWeighsTheBytesInItsOwnSequence) {
    constexpr int kSequence[] = {10, 11, 12, 13, 14, 15, 8, 9, 6, 7, 4, 5, 0, 1, 2, 3};
    for (size_t place = 0; place < std::size(kSequence); ++place) {
        // The right side is greater in every byte that weighs less than the one at this place.
        unsigned char storage[2][17] = {};
        unsigned char* const left = storage[0] + 1;
        unsigned char* const right = storage[1] + 1;
        left[kSequence[place]] = 0x80;
        right[kSequence[place]] = 0x7F;
        for (size_t lighter = place + 1; lighter < std::size(kSequence); ++lighter) {
            right[kSequence[lighter]] = 0xFF;
        }
        const auto* a = reinterpret_cast<const GUID*>(left);
        const auto* b = reinterpret_cast<const GUID*>(right);
        EXPECT_EQ(1, QXComCompareGUID(a, b)) << place;
        EXPECT_EQ(-1, QXComCompareGUID(b, a)) << place;
        EXPECT_EQ(0, QXComCompareGUID(a, a));
        EXPECT_FALSE(QXComIsEqualGUID(a, b));
    }
}

CHILD_ROLE(Generate) {
    GUID guid;
    const QXResult result = QXComGenerateGUID(&guid);
    std::printf("%s\n", std::filesystem::path(TextOf(guid)).string().c_str());
    return result;
}

TEST(Guid, GeneratedOnesDifferFromOneAnotherAndBetweenProcesses) {
    GUID guids[2];
    std::set<std::u16string> texts;
    for (GUID& guid : guids) {
        ASSERT_EQ(QX_S_OK, QXComGenerateGUID(&guid));
        EXPECT_EQ(4, guid.Data3 >> 12);
        EXPECT_EQ(2, guid.Data4[0] >> 6);
        texts.insert(TextOf(guid));
        ChildProcess child("Generate");
        texts.insert(Widen(child.ReadLine()));
        EXPECT_EQ(0, child.Wait());
    }
    EXPECT_EQ(4u, texts.size());
}

}  // namespace

#include <gtest/gtest.h>
#include <qxcore/guid.h>

#include <cstdio>
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
    for (const char16_t* text : {kSampleText, u"01234567-89ab-CDEF-fedc-BA9876543210",
                                 u"01234567-89ab-CDEF-fedc-BA9876543210 and more",
                                 u"{01234567-89ab-CDEF-fedc-BA9876543210}tail"}) {
        GUID guid;
        EXPECT_EQ(QX_S_OK, QXComGUIDFromString(text, &guid));
        EXPECT_TRUE(QXComIsEqualGUID(&kSample, &guid));
        EXPECT_EQ(kSampleText, TextOf(guid));
    }
    for (const char16_t* text :
         {u"", u"01234567-89ab-CDEF-fedc-BA987654321", u"{01234567-89ab-CDEF-fedc-BA9876543210",
          u"{01234567-89ab-CDEF-fedc-BA9876543210 }", u"0123456789ab-CDEF-fedc-BA9876543210--",
          u"01234567-89a\u0130-CDEF-fedc-BA9876543210",
          u"{{1234567-89ab-CDEF-fedc-BA9876543210}"}) {
        GUID guid = kSample;
        EXPECT_EQ(QX_E_INVALIDARG, QXComGUIDFromString(text, &guid));
        EXPECT_TRUE(QXComIsEqualGUID(&kSample, &guid));
    }
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
    // At odd addresses. The right side is greater in every byte that weighs less than that of the
    // place.
    unsigned char left[17] = {};
    unsigned char right[17] = {};
    const auto* a = reinterpret_cast<const GUID*>(left + 1);
    const auto* b = reinterpret_cast<const GUID*>(right + 1);
    for (size_t place = std::size(kSequence); place-- > 0;) {
        left[1 + kSequence[place]] = 0x80;
        right[1 + kSequence[place]] = 0x7F;
        EXPECT_EQ(1, QXComCompareGUID(a, b)) << place;
        EXPECT_EQ(-1, QXComCompareGUID(b, a)) << place;
        EXPECT_EQ(0, QXComCompareGUID(a, a));
        EXPECT_FALSE(QXComIsEqualGUID(a, b));
        left[1 + kSequence[place]] = 0;
        right[1 + kSequence[place]] = 0xFF;
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
        EXPECT_EQ(std::pair(4, 2), std::pair(guid.Data3 >> 12, guid.Data4[0] >> 6));
        texts.insert(TextOf(guid));
        ChildProcess child("Generate");
        texts.insert(Widen(child.ReadLine()));
        EXPECT_EQ(0, child.Wait());
    }
    EXPECT_EQ(4u, texts.size());
}

}  // namespace

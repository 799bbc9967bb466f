#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/exact_text.h"

namespace {

constexpr size_t kAll = SIZE_MAX;

// The forms of one member, so that one body of a test serves both.

template <typename UnitOfForm>
struct Form;

template <>
struct Form<char> {
    static constexpr auto kCpy = QXStrCpyA;
    static constexpr auto kNCpy = QXStrNCpyA;
    static constexpr auto kNCat = QXStrNCatA;
    static constexpr auto kNZCpy = QXStrNZCpyA;
    static constexpr auto kNZCat = QXStrNZCatA;
    static constexpr auto kLen = QXStrLenA;
    static constexpr auto kNLen = QXStrNLenA;
    static constexpr auto kDup = QXStrDupA;
    static constexpr auto kNDup = QXStrNDupA;
    static constexpr auto kFree = QXStrFreeA;
};

template <>
struct Form<char16_t> {
    static constexpr auto kCpy = QXStrCpyW;
    static constexpr auto kNCpy = QXStrNCpyW;
    static constexpr auto kNCat = QXStrNCatW;
    static constexpr auto kNZCpy = QXStrNZCpyW;
    static constexpr auto kNZCat = QXStrNZCatW;
    static constexpr auto kLen = QXStrLenW;
    static constexpr auto kNLen = QXStrNLenW;
    static constexpr auto kDup = QXStrDupW;
    static constexpr auto kNDup = QXStrNDupW;
    static constexpr auto kFree = QXStrFreeW;
};

template <typename Unit>
class StringForms : public testing::Test {
  protected:
    using String = std::basic_string<Unit>;

    // 'a', 'b', 'c' ...
    static String Letters(size_t count) {
        String text(count, 0);
        for (size_t index = 0; index < count; ++index) {
            text[index] = static_cast<Unit>('a' + index % 26);
        }
        return text;
    }
};

using Units = testing::Types<char, char16_t>;
TYPED_TEST_SUITE(StringForms, Units);

TYPED_TEST(StringForms, LengthsStopAtTerminatorAndLimit) {
    using Members = Form<TypeParam>;
    for (size_t length : {0u, 1u, 7u, 8u, 15u, 16u, 33u, 300u}) {
        const auto text = ExactText(std::basic_string_view<TypeParam>(this->Letters(length)));
        EXPECT_EQ(Members::kLen(text.data()), length);
        for (size_t limit : {size_t{0}, length / 2, length, length + 1, kAll}) {
            EXPECT_EQ(Members::kNLen(text.data(), limit), std::min(length, limit));
            const auto head =
                ExactUnits(std::basic_string_view<TypeParam>(text.data(), std::min(length, limit)));
            EXPECT_EQ(Members::kNLen(head.data(), head.size()), head.size());
        }
    }
    EXPECT_EQ(Members::kNLen(nullptr, 0), 0u);
}

TYPED_TEST(StringForms, DuplicatesHoldTextOrItsHead) {
    using Members = Form<TypeParam>;
    EXPECT_EQ(Members::kDup(nullptr), nullptr);
    EXPECT_EQ(Members::kNDup(nullptr, 5), nullptr);
    const auto letters = this->Letters(40);
    const auto head = ExactUnits(std::basic_string_view<TypeParam>(letters));
    for (uint32_t limit = 0; limit <= 40; ++limit) {
        TypeParam* const copy = Members::kNDup(head.data(), limit);
        EXPECT_EQ(typename TestFixture::String(copy), letters.substr(0, limit));
        TypeParam* const whole = Members::kDup(copy);
        EXPECT_EQ(typename TestFixture::String(whole), letters.substr(0, limit));
        Members::kFree(copy);
        Members::kFree(whole);
    }
    Members::kFree(nullptr);
}

TYPED_TEST(StringForms, CopiesMayShiftTextDownInPlace) {
    for (size_t length : {1u, 5u, 40u, 100u}) {
        const auto letters = this->Letters(length);
        auto text = ExactText(std::basic_string_view<TypeParam>(letters));
        EXPECT_EQ(Form<TypeParam>::kCpy(text.data(), text.data() + 1), text.data());
        EXPECT_EQ(typename TestFixture::String(text.data()), letters.substr(1));
    }
}

TYPED_TEST(StringForms, CountedCopiesFillUpAndDoNotTerminate) {
    for (size_t length = 0; length <= 9; ++length) {
        const auto letters = this->Letters(length);
        auto source = ExactText(std::basic_string_view<TypeParam>(letters));
        for (size_t count = 0; count <= length + 3; ++count) {
            std::vector<TypeParam> target(std::max<size_t>(count, 1), '#');
            auto expected = letters;
            expected.resize(count);
            expected.resize(target.size(), '#');
            EXPECT_EQ(Form<TypeParam>::kNCpy(target.data(), source.data(), count), target.data());
            EXPECT_TRUE(std::equal(target.begin(), target.end(), expected.begin()));

            auto longer = ExactText(std::basic_string_view<TypeParam>(letters));
            longer.resize(length + std::min(length, count) + 1, '#');
            Form<TypeParam>::kNCat(longer.data(), source.data(), count);
            EXPECT_EQ(typename TestFixture::String(longer.data()),
                      letters + letters.substr(0, count));
        }
    }
}

// What an NZ member leaves in a buffer that held '#' behind its text.
template <typename String>
String Bounded(String buffer, size_t position, String source, size_t count, bool fills) {
    const size_t length = std::min(buffer.size() - position - 1, count);
    for (size_t index = 0; index < length; ++index) {
        if (index <= source.size() || fills) {
            buffer[position + index] = index < source.size() ? source[index] : 0;
        }
    }
    buffer[position + length] = 0;
    return buffer;
}

TYPED_TEST(StringForms, BoundedCopiesTerminateWithinEverySize) {
    using Members = Form<TypeParam>;
    using String = typename TestFixture::String;
    const String source = this->Letters(6);
    const auto exact = ExactText(std::basic_string_view<TypeParam>(source));
    for (size_t size = 1; size <= source.size() + 3; ++size) {
        for (size_t count : {size_t{0}, size_t{1}, size_t{5}, size_t{6}, size_t{7}, kAll}) {
            std::vector<TypeParam> target(size, '#');
            EXPECT_EQ(Members::kNZCpy(target.data(), size, exact.data(), count), target.data());
            EXPECT_EQ(String(target.begin(), target.end()),
                      Bounded(String(size, '#'), 0, source, count, true));
            if constexpr (sizeof(TypeParam) == 2) {
                std::ranges::fill(target, u'#');
                QXStrNZCpyUTF16(target.data(), size, exact.data(), count);
                EXPECT_EQ(String(target.begin(), target.end()),
                          Bounded(String(size, '#'), 0, source, count, false));
            }
        }
    }
}

TYPED_TEST(StringForms, BoundedConcatenationsTerminateWithinEverySize) {
    using Members = Form<TypeParam>;
    using String = typename TestFixture::String;
    const String source = this->Letters(3);
    const auto exact = ExactText(std::basic_string_view<TypeParam>(source));
    for (size_t size = 1; size <= 9; ++size) {
        for (size_t held = 0; held <= size; ++held) {
            String before(size, '#');
            if (held < size) {
                before[held] = 0;
            }
            const size_t position = std::min(held, size - 1);
            for (size_t count : {size_t{0}, size_t{2}, size_t{3}, size_t{4}, kAll}) {
                std::vector<TypeParam> target(before.begin(), before.end());
                EXPECT_EQ(Members::kNZCat(target.data(), size, exact.data(), count),
                          target.data() + position);
                EXPECT_EQ(String(target.begin(), target.end()),
                          Bounded(before, position, source, count, true));
                if constexpr (sizeof(TypeParam) == 2) {
                    target.assign(before.begin(), before.end());
                    QXStrNZCatUTF16(target.data(), size, exact.data(), count);
                    EXPECT_EQ(String(target.begin(), target.end()),
                              Bounded(before, position, source, count, false));
                }
            }
        }
    }
}

TYPED_TEST(StringForms, BoundedMembersKeepTheirEffectsWithoutASize) {
    using Members = Form<TypeParam>;
    using String = typename TestFixture::String;
    const auto source = ExactText(std::basic_string_view<TypeParam>(this->Letters(3)));
    std::vector<TypeParam> target(6, '#');
    EXPECT_EQ(Members::kNZCpy(target.data(), 0, source.data(), 5), target.data());
    EXPECT_EQ(String(target.begin(), target.end()), this->Letters(3) + String(3, 0));
    std::ranges::fill(target, TypeParam{'#'});
    EXPECT_EQ(Members::kNZCat(target.data() + 1, 0, source.data(), 5), target.data());
    EXPECT_EQ(String(target.begin(), target.end()), String(1, 0) + String(5, '#'));
    if constexpr (sizeof(TypeParam) == 2) {
        std::ranges::fill(target, u'#');
        QXStrNZCpyUTF16(target.data(), 0, source.data(), 5);
        EXPECT_EQ(String(target.begin(), target.end()), String(u"abc\0#\0", 6));
        QXStrNZCatUTF16(target.data() + 1, 0, source.data(), 5);
        EXPECT_EQ(String(target.begin(), target.end()), String(u"\0bc\0#\0", 6));
    }
}

TEST(StringCopy, WidthOfWideLengthsIsKept) {
    EXPECT_EQ(QXStrLenUTF16(u"a\xD83D\xDE00"), 3);
    EXPECT_EQ(QXStrLenA_32("abc"), 3u);
    EXPECT_EQ(QXStrLenW_32(u"abc"), 3u);
    EXPECT_EQ(QXStrNLenUTF16(u"abc", 2), 2u);
}

TEST(StringCopy, ConcatenationReturnsTheTarget) {
    auto narrow = ExactUnits(std::string_view("ab\0##", 5));
    EXPECT_EQ(QXStrCatA(narrow.data(), "cd"), narrow.data());
    EXPECT_STREQ(narrow.data(), "abcd");
    auto wide = ExactUnits(std::u16string_view(u"ab\0##", 5));
    EXPECT_EQ(QXStrCatW(wide.data(), u"cd"), wide.data());
    EXPECT_EQ(std::u16string(wide.data()), u"abcd");
}

TEST(StringCopy, ListOverwritesSkipsNullAndCountsBytes) {
    EXPECT_EQ(QXStrCpyCatA(nullptr, 1, "a"), 0);
    auto target = ExactText("xxxx");
    EXPECT_EQ(QXStrCpyCatA(target.data(), 4, "ab", nullptr, "", "cd"), 4);
    EXPECT_STREQ(target.data(), "abcd");
    EXPECT_EQ(QXStrCpyCatA(target.data(), 1, nullptr), 0);
    EXPECT_STREQ(target.data(), "");
    for (int32_t number : {0, -1}) {
        target = ExactText("xxxx");
        EXPECT_EQ(QXStrCpyCatA(target.data(), number, "ab"), 0);
        EXPECT_EQ(std::string(target.begin(), target.end()), std::string("\0xxx\0", 5));
    }
}

}  // namespace

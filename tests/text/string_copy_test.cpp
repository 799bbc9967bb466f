#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/exact_text.h"

namespace {

constexpr size_t kAll = SIZE_MAX;

// The forms of one member, so that one body of a test serves both.

template <typename Unit>
struct Form;

#define QX_FORM(unit, suffix)                              \
    template <>                                            \
    struct Form<unit> {                                    \
        static constexpr auto kCpy = QXStrCpy##suffix;     \
        static constexpr auto kCat = QXStrCat##suffix;     \
        static constexpr auto kNCpy = QXStrNCpy##suffix;   \
        static constexpr auto kNCat = QXStrNCat##suffix;   \
        static constexpr auto kNZCpy = QXStrNZCpy##suffix; \
        static constexpr auto kNZCat = QXStrNZCat##suffix; \
        static constexpr auto kLen = QXStrLen##suffix;     \
        static constexpr auto kNLen = QXStrNLen##suffix;   \
        static constexpr auto kDup = QXStrDup##suffix;     \
        static constexpr auto kNDup = QXStrNDup##suffix;   \
        static constexpr auto kFree = QXStrFree##suffix;   \
    }
QX_FORM(char, A);
QX_FORM(char16_t, W);

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
        const auto text = ExactText(this->Letters(length));
        EXPECT_EQ(Members::kLen(text.data()), length);
        std::vector<TypeParam> twice(2 * length + 1);
        EXPECT_EQ(Members::kCat(Members::kCat(twice.data(), text.data()), text.data()),
                  twice.data());
        EXPECT_EQ(Members::kLen(twice.data()), 2 * length);
        for (size_t limit : {size_t{0}, length / 2, length, length + 1, kAll}) {
            EXPECT_EQ(Members::kNLen(text.data(), limit), std::min(length, limit));
            const auto head =
                ExactUnits(std::basic_string<TypeParam>(text.data(), std::min(length, limit)));
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
    const auto head = ExactUnits(letters);
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
        auto text = ExactText(letters);
        EXPECT_EQ(Form<TypeParam>::kCpy(text.data(), text.data() + 1), text.data());
        EXPECT_EQ(typename TestFixture::String(text.data()), letters.substr(1));
    }
}

TYPED_TEST(StringForms, CountedCopiesFillUpAndDoNotTerminate) {
    for (size_t length = 0; length <= 9; ++length) {
        const auto letters = this->Letters(length);
        auto source = ExactText(letters);
        for (size_t count = 0; count <= length + 3; ++count) {
            std::vector<TypeParam> target(std::max<size_t>(count, 1), '#');
            auto expected = letters;
            expected.resize(count);
            expected.resize(target.size(), '#');
            EXPECT_EQ(Form<TypeParam>::kNCpy(target.data(), source.data(), count), target.data());
            EXPECT_TRUE(std::equal(target.begin(), target.end(), expected.begin()));

            auto longer = ExactText(letters);
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
    const auto exact = ExactText(source);
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
    const auto exact = ExactText(source);
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
    const auto source = ExactText(this->Letters(3));
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

TEST(StringCopy, ListOverwritesSkipsNullAndCountsBytes) {
    EXPECT_EQ(QXStrCpyCatA(nullptr, 1, "a"), 0);
    auto target = ExactText<char>("xxxx");
    EXPECT_EQ(QXStrCpyCatA(target.data(), 4, "ab", nullptr, "", "cd"), 4);
    EXPECT_STREQ(target.data(), "abcd");
    EXPECT_EQ(QXStrCpyCatA(target.data(), 1, nullptr), 0);
    EXPECT_STREQ(target.data(), "");
    for (int32_t number : {0, -1}) {
        target = ExactText<char>("xxxx");
        EXPECT_EQ(QXStrCpyCatA(target.data(), number, "ab"), 0);
        EXPECT_EQ(std::string(target.begin(), target.end()), std::string("\0xxx\0", 5));
    }
}

}  // namespace

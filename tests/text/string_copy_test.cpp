#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/exact_text.h"

namespace {

// 'a', 'b', 'c' ...
template <typename Unit>
std::basic_string<Unit> Letters(size_t count) {
    std::basic_string<Unit> text;
    while (text.size() < count) {
        text += static_cast<Unit>('a' + text.size() % 26);
    }
    return text;
}

template <typename Unit>
void ExpectLengths(size_t length(const Unit*), size_t lengthWithin(const Unit*, size_t),
                   Unit* duplicate(const Unit*), Unit* duplicateHead(const Unit*, uint32_t),
                   void release(Unit*)) {
    for (const uint32_t units : {0u, 1u, 15u, 16u, 33u, 300u}) {
        const auto letters = Letters<Unit>(units);
        const auto text = ExactText(letters);
        EXPECT_EQ(length(text.data()), units);
        for (const uint32_t limit : {0u, units / 2, units, units + 1, UINT32_MAX}) {
            const auto head = letters.substr(0, limit);
            EXPECT_EQ(lengthWithin(text.data(), limit), head.size());
            // No terminator is needed where the limit ends the text.
            EXPECT_EQ(lengthWithin(ExactUnits(head).data(), head.size()), head.size());
            Unit* const copy = duplicateHead(text.data(), limit);
            Unit* const whole = duplicate(copy);
            EXPECT_EQ(copy, head);
            EXPECT_EQ(whole, head);
            release(copy);
            release(whole);
        }
    }
    EXPECT_EQ(duplicate(nullptr), nullptr);
    EXPECT_EQ(duplicateHead(nullptr, 5), nullptr);
    release(nullptr);
}

TEST(StringCopy, LengthsAndDuplicatesStopAtTerminatorAndLimit) {
    ExpectLengths(QXStrLenA, QXStrNLenA, QXStrDupA, QXStrNDupA, QXStrFreeA);
    ExpectLengths(QXStrLenW, QXStrNLenW, QXStrDupW, QXStrNDupW, QXStrFreeW);
}

template <typename Unit>
void ExpectShift(Unit* copy(Unit*, const Unit*)) {
    for (const size_t length : {1, 5, 40, 300}) {
        auto text = ExactText(Letters<Unit>(length));
        EXPECT_EQ(copy(text.data(), text.data() + 1), text.data());
        EXPECT_EQ(text.data(), Letters<Unit>(length).substr(1));
    }
}

TEST(StringCopy, CopiesMayShiftTextDownInPlace) {
    ExpectShift(QXStrCpyA);
    ExpectShift(QXStrCpyW);
}

template <typename Unit>
void ExpectCounted(Unit* copy(Unit*, const Unit*, size_t), Unit* append(Unit*, const Unit*, size_t),
                   Unit* appendAll(Unit*, const Unit*)) {
    using String = std::basic_string<Unit>;
    const String letters = Letters<Unit>(9);
    for (size_t count = 0; count <= 12; ++count) {
        const String head = letters.substr(0, count);
        String target(count, '#');
        EXPECT_EQ(copy(target.data(), letters.c_str(), count), target.data());
        EXPECT_EQ(target, head + String(count - head.size(), 0));
        auto longer = ExactText(letters);
        longer.resize(letters.size() + head.size() + letters.size() + 1, '#');
        EXPECT_EQ(append(longer.data(), letters.c_str(), count), letters + head);
        EXPECT_EQ(appendAll(longer.data(), letters.c_str()), letters + head + letters);
    }
}

TEST(StringCopy, CountedCopiesFillUpAndDoNotTerminate) {
    ExpectCounted(QXStrNCpyA, QXStrNCatA, QXStrCatA);
    ExpectCounted(QXStrNCpyW, QXStrNCatW, QXStrCatW);
    // Of what is not terminated no more is read than counts.
    const auto open = ExactUnits(std::u16string(u"abc"));
    char16_t target[8] = {};
    QXStrNCpyW(target, open.data(), 3);
    EXPECT_EQ(QXStrNCatW(target, open.data(), 3), std::u16string(u"abcabc"));
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

template <typename Unit, typename Member>
void ExpectBounded(Member copy, Member append, bool fills = true) {
    using String = std::basic_string<Unit>;
    const auto source = ExactText(Letters<Unit>(3));
    for (size_t size = 1; size <= 9; ++size) {
        for (size_t held = 0; held <= size; ++held) {
            String before(size, '#');
            if (held < size) {
                before[held] = 0;
            }
            for (const size_t count : {size_t{0}, size_t{2}, size_t{3}, size_t{4}, SIZE_MAX}) {
                for (const Member member : {copy, append}) {
                    auto target = ExactUnits(before);
                    member(target.data(), size, source.data(), count);
                    const size_t position = member == append ? std::min(held, size - 1) : 0;
                    EXPECT_EQ(String(target.begin(), target.end()),
                              Bounded(before, position, Letters<Unit>(3), count, fills));
                }
            }
        }
    }
}

TEST(StringCopy, BoundedMembersTerminateWithinEverySize) {
    ExpectBounded<char>(QXStrNZCpyA, QXStrNZCatA);
    ExpectBounded<wchar>(QXStrNZCpyW, QXStrNZCatW);
    ExpectBounded<wchar>(QXStrNZCpyUTF16, QXStrNZCatUTF16, false);
}

template <typename Unit, typename Member>
void ExpectEffectsWithoutASize(Member copy, Member append) {
    using String = std::basic_string<Unit>;
    String target(6, '#');
    EXPECT_EQ(copy(target.data(), 0, Letters<Unit>(3).c_str(), 5), target.data());
    EXPECT_EQ(target, Letters<Unit>(3) + String(3, 0));
    target.assign(6, '#');
    EXPECT_EQ(append(target.data() + 1, 0, Letters<Unit>(3).c_str(), 5), target.data());
    EXPECT_EQ(target, String(1, 0) + String(5, '#'));
}

TEST(StringCopy, BoundedMembersKeepTheirEffectsWithoutASize) {
    ExpectEffectsWithoutASize<char>(QXStrNZCpyA, QXStrNZCatA);
    ExpectEffectsWithoutASize<wchar>(QXStrNZCpyW, QXStrNZCatW);
    std::u16string target(6, '#');
    QXStrNZCpyUTF16(target.data(), 0, u"abc", 5);
    EXPECT_EQ(target, std::u16string(u"abc\0#\0", 6));
    QXStrNZCatUTF16(target.data() + 1, 0, u"abc", 5);
    EXPECT_EQ(target, std::u16string(u"\0bc\0#\0", 6));
}

TEST(StringCopy, ListOverwritesSkipsNullAndCountsBytes) {
    EXPECT_EQ(QXStrCpyCatA(nullptr, 1, "a"), 0);
    auto target = ExactText<char>("xxxx");
    EXPECT_EQ(QXStrCpyCatA(target.data(), 4, "ab", nullptr, "", "cd"), 4);
    EXPECT_STREQ(target.data(), "abcd");
    for (const int32_t number : {0, -1}) {
        target = ExactText<char>("xxxx");
        EXPECT_EQ(QXStrCpyCatA(target.data(), number, "ab"), 0);
        EXPECT_EQ(std::string(target.begin(), target.end()), std::string("\0xxx\0", 5));
    }
}

}  // namespace

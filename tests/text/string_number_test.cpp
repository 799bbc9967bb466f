#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <cerrno>
#include <cmath>
#include <string>

#include "support/allocation_fault.h"
#include "support/exact_text.h"

namespace {

// What a member gave, where it stopped and what it left in errno.
template <typename Value>
struct Reading {
    Value m_value;
    std::ptrdiff_t m_end;
    int m_error;

    bool operator==(const Reading&) const = default;
};

template <typename Member, typename Unit, typename... Radix>
auto Read(Member member, const std::vector<Unit>& text, Radix... radix) {
    Unit* end = nullptr;
    errno = 0;
    const auto value = member(text.data(), &end, radix...);
    return Reading<decltype(value)>{value, end - text.data(), errno};
}

struct WholeCase {
    const char* text;
    int32_t radix;
    int64_t value;
    std::ptrdiff_t end;
    int error = 0;
};

template <typename Narrow, typename Wide>
void ExpectReadings(const WholeCase& each, Narrow narrow, Wide wide) {
    using Value = decltype(narrow(nullptr, nullptr, 0));
    SCOPED_TRACE(std::string(each.text) + " in radix " + std::to_string(each.radix));
    const Reading<const Value> expected{static_cast<Value>(each.value), each.end, each.error};
    EXPECT_TRUE(Read(narrow, ExactText<char>(each.text), each.radix) == expected);
    const auto wideText = ExactText(Widen(each.text));
    EXPECT_TRUE(Read(wide, wideText, each.radix) == expected);
}

TEST(StringNumber, EveryReaderAgreesOnSyntax) {
    for (const WholeCase& each : {WholeCase{"", 10, 0, 0},
                                  {" \t\n\v\f\r+12x", 10, 12, 9},
                                  {"- 1", 10, 0, 0},
                                  {"+", 10, 0, 0},
                                  {"0x", 16, 0, 1},
                                  {"0x", 0, 0, 1},
                                  {"0xg", 16, 0, 1},
                                  {"0X1fG", 16, 31, 4},
                                  {"0x1F", 0, 31, 4},
                                  {"017", 0, 15, 3},
                                  {"018", 0, 1, 2},
                                  {"19", 0, 19, 2},
                                  {"0x10", 10, 0, 1},
                                  {"zZ", 36, 35 * 36 + 35, 2},
                                  {"102", 2, 2, 2},
                                  {"1_", 10, 1, 1},
                                  {"11", -1, 0, 0, EINVAL},
                                  {"11", 1, 0, 0, EINVAL},
                                  {"11", 37, 0, 0, EINVAL}}) {
        ExpectReadings(each, QXStrToLA, QXStrToLW);
        ExpectReadings(each, QXStrToULA, QXStrToULW);
        ExpectReadings(each, QXStrToLLA, QXStrToLLW);
    }
    EXPECT_EQ(QXStrToLA("12", nullptr, 10), 12);
    EXPECT_EQ(QXStrToLW(u"12", nullptr, 10), 12);
    EXPECT_EQ(QXStrToULLA("18446744073709551615", nullptr, 10), UINT64_MAX);
}

TEST(StringNumber, RangesAreThoseOf32And64Bits) {
    for (const WholeCase& each : {WholeCase{"2147483647", 10, INT32_MAX, 10},
                                  {"2147483648", 10, INT32_MAX, 10, ERANGE},
                                  {"-2147483648", 10, INT32_MIN, 11},
                                  {"-2147483649", 10, INT32_MIN, 11, ERANGE},
                                  {"99999999999999999999", 10, INT32_MAX, 20, ERANGE}}) {
        ExpectReadings(each, QXStrToLA, QXStrToLW);
    }
    for (const WholeCase& each : {WholeCase{"4294967295", 10, UINT32_MAX, 10},
                                  {"4294967296", 10, UINT32_MAX, 10, ERANGE},
                                  {"-1", 10, UINT32_MAX, 2},
                                  {"-4294967295", 10, 1, 11},
                                  {"-4294967296", 10, UINT32_MAX, 11, ERANGE},
                                  {"-18446744073709551616", 10, UINT32_MAX, 21, ERANGE}}) {
        ExpectReadings(each, QXStrToULA, QXStrToULW);
    }
    for (const WholeCase& each : {WholeCase{"9223372036854775807", 10, INT64_MAX, 19},
                                  {"9223372036854775808", 10, INT64_MAX, 19, ERANGE},
                                  {"-9223372036854775808", 10, INT64_MIN, 20},
                                  {"-9223372036854775809", 10, INT64_MIN, 20, ERANGE}}) {
        ExpectReadings(each, QXStrToLLA, QXStrToLLW);
    }
}

TEST(StringNumber, ShortReadersSaturate) {
    struct Case {
        const char* text;
        int32_t narrow;
        int64_t wide;
    };
    for (const Case& each : {Case{"", 0, 0},
                             {" -12z", -12, -12},
                             {"0x10", 0, 0},
                             {"2147483648", INT32_MAX, 2147483648},
                             {"-2147483649", INT32_MIN, -2147483649},
                             {"9223372036854775808", INT32_MAX, INT64_MAX},
                             {"-9223372036854775809", INT32_MIN, INT64_MIN}}) {
        const auto wide = ExactText(Widen(each.text));
        EXPECT_EQ(QXStrToIA(ExactText<char>(each.text).data()), each.narrow);
        EXPECT_EQ(QXStrToIW(wide.data()), each.narrow);
        EXPECT_EQ(QXStrToI64W(wide.data()), each.wide);
    }
}

TEST(StringNumber, WideUnitsAreNotCutToBytes) {
    EXPECT_EQ(QXStrToIW(u"1\x0132"), 1);
    EXPECT_EQ(QXStrToIW(u"\u012D1"), 0);
    EXPECT_EQ(QXStrToLW(u"\x0161", nullptr, 36), 0);
    EXPECT_EQ(QXStrToDW(u"1\u012E5", nullptr), 1.0);
    EXPECT_EQ(QXStrToIA("\2401"), 0);
}

TEST(StringNumber, FloatingPointReadersAgree) {
    struct Case {
        std::string text;
        double value;
        std::ptrdiff_t end;
        int error = 0;
    };
    const std::string digits(500, '7');
    for (const Case& each : {Case{"", 0, 0},
                             {" \t-1.5e3x", -1500, 8},
                             {".5", 0.5, 2},
                             {"1e", 1, 1},
                             {"e1", 0, 0},
                             {"0x1.8p1", 3, 7},
                             {"1,5", 1, 1},
                             {"inf", INFINITY, 3},
                             {"-Infinity!", -INFINITY, 9},
                             {"1e999", HUGE_VAL, 5, ERANGE},
                             {"1e-999", 0, 6, ERANGE},
                             {"  x", 0, 0},
                             {"0." + digits, 7.0 / 9, 502},
                             {digits + "e-500", 7.0 / 9, 505}}) {
        SCOPED_TRACE(each.text);
        const Reading<const double> expected{each.value, each.end, each.error};
        EXPECT_TRUE(Read(QXStrToDA, ExactText<char>(each.text)) == expected);
        const auto wide = ExactText(Widen(each.text));
        EXPECT_TRUE(Read(QXStrToDW, wide) == expected);
    }
    EXPECT_TRUE(std::isnan(QXStrToDW(u"nan(1)", nullptr)));
}

// The longest number is found without a look at all that follows it: only a long one is copied.
TEST(StringNumber, NumbersOfAListAreReadOneByOne) {
    struct Case {
        std::u16string element;
        double value;
        std::ptrdiff_t length;
    };
    for (const Case& each : {Case{u"1.5.", 1.5, 3},
                             {u"-2e+1+", -20, 5},
                             {u"0x1p1-", 2, 5},
                             {u"infinityx", INFINITY, 8},
                             {u"7_", 7, 1}}) {
        std::u16string list;
        while (list.size() < 500) {
            list += each.element;
        }
        wchar* end = nullptr;
        FailAllocation(1);
        EXPECT_EQ(QXStrToDW(list.data(), &end), each.value);
        EXPECT_EQ(end - list.data(), each.length);
        EXPECT_FALSE(AllocationHasFailed());
        FailAllocation(0);
    }
}

TEST(StringNumber, LongNumberWithoutMemoryIsNone) {
    const std::u16string digits(121, u'7');
    wchar* end = nullptr;
    FailAllocation(1);
    errno = 0;
    const double value = QXStrToDW(digits.data(), &end);
    const int error = errno;
    if (AllocationHasFailed()) {
        EXPECT_EQ(value, 0);
        EXPECT_EQ(end, digits.data());
        EXPECT_EQ(error, ENOMEM);
    }
    FailAllocation(0);
}

TEST(StringNumber, NumbersAreWrittenWithASignInRadixTenAlone) {
    struct Case {
        int64_t value;
        int32_t radix;
        const char* as32;
        const char* as64;
    };
    const std::string ones32(32, '1');
    const std::string ones64(64, '1');
    for (const Case& each : {Case{0, 10, "0", "0"},
                             {0, 2, "0", "0"},
                             {-1, 10, "-1", "-1"},
                             {35, 36, "z", "z"},
                             {-1, 16, "ffffffff", "ffffffffffffffff"},
                             {-1, 2, ones32.c_str(), ones64.c_str()},
                             {INT32_MIN, 10, "-2147483648", "-2147483648"},
                             {INT32_MIN, 8, "20000000000", "1777777777760000000000"}}) {
        const auto exact32 = ExactText<char>(each.as32);
        const auto exact64 = ExactText<char>(each.as64);
        auto narrow32 = exact32, narrow64 = exact64;
        const auto value32 = static_cast<int32_t>(each.value);
        EXPECT_STREQ(QXLToStrA(value32, narrow32.data(), each.radix), each.as32);
        EXPECT_STREQ(QXInt64ToStrA(each.value, narrow64.data(), each.radix), each.as64);
        std::vector<char16_t> wide32(exact32.size()), wide64(exact64.size());
        EXPECT_EQ(QXLToStrW(value32, wide32.data(), each.radix), Widen(each.as32));
        EXPECT_EQ(QXInt64ToStrW(each.value, wide64.data(), each.radix), Widen(each.as64));
    }
    for (const int32_t radix : {-1, 0, 1, 37}) {
        char text[66] = "x";
        errno = 0;
        EXPECT_STREQ(QXLToStrA(5, text, radix), "");
        EXPECT_EQ(errno, EINVAL);
    }
    char text[66];
    EXPECT_STREQ(QXInt64ToStrA(INT64_MIN, text, 10), "-9223372036854775808");
}

}  // namespace

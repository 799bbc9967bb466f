#include <gtest/gtest.h>
#include <qxcore/string.h>

#include <cerrno>
#include <cmath>
#include <string>
#include <tuple>

#include "support/allocation_fault.h"
#include "support/exact_text.h"

namespace {

// What a member gives, where it stops and what it leaves in errno.
template <typename Member, typename Unit, typename... Radix>
auto Read(Member member, const std::vector<Unit>& text, Radix... radix) {
    Unit* end = nullptr;
    errno = 0;
    const auto value = member(text.data(), &end, radix...);
    return std::tuple(value, end - text.data(), errno);
}

struct Case {
    const char* text;
    int32_t radix;
    int64_t value;
    std::ptrdiff_t end;
    int error = 0;
};

template <typename Value>
void ExpectReadings(const Case& each, Value narrow(const char*, char**, int32_t),
                    Value wide(const wchar*, wchar**, int32_t)) {
    SCOPED_TRACE(std::string(each.text) + " in radix " + std::to_string(each.radix));
    const std::tuple expected(static_cast<Value>(each.value), each.end, each.error);
    EXPECT_EQ(Read(narrow, ExactText<char>(each.text), each.radix), expected);
    EXPECT_EQ(Read(wide, ExactText(Widen(each.text)), each.radix), expected);
}

TEST(StringNumber, EveryReaderAgreesOnSyntax) {
    for (const Case& each : {Case{"", 10, 0, 0},
                             {" \t\n\v\f\r+12x", 10, 12, 9},
                             {"- 1", 10, 0, 0},
                             {"0x", 16, 0, 1},
                             {"0xg", 16, 0, 1},
                             {"0X1fG", 16, 31, 4},
                             {"0x1F", 0, 31, 4},
                             {"018", 0, 1, 2},
                             {"0x10", 10, 0, 1},
                             {"zZ", 36, 35 * 36 + 35, 2},
                             {"11", -1, 0, 0, EINVAL},
                             {"11", 1, 0, 0, EINVAL},
                             {"11", 37, 0, 0, EINVAL}}) {
        ExpectReadings(each, QXStrToLA, QXStrToLW);
        ExpectReadings(each, QXStrToULA, QXStrToULW);
        ExpectReadings(each, QXStrToLLA, QXStrToLLW);
    }
    EXPECT_EQ(QXStrToLA("12", nullptr, 10), 12);
    EXPECT_EQ(QXStrToULLA("18446744073709551615", nullptr, 10), UINT64_MAX);
}

TEST(StringNumber, RangesAreThoseOf32And64Bits) {
    for (const Case& each : {Case{"2147483647", 10, INT32_MAX, 10},
                             {"2147483648", 10, INT32_MAX, 10, ERANGE},
                             {" -2147483648z", 10, INT32_MIN, 12},
                             {"-2147483649", 10, INT32_MIN, 11, ERANGE},
                             {"99999999999999999999", 10, INT32_MAX, 20, ERANGE}}) {
        ExpectReadings(each, QXStrToLA, QXStrToLW);
        EXPECT_EQ(QXStrToIA(each.text), each.value);
        EXPECT_EQ(QXStrToIW(Widen(each.text).c_str()), each.value);
    }
    for (const Case& each : {Case{"4294967295", 10, UINT32_MAX, 10},
                             {"4294967296", 10, UINT32_MAX, 10, ERANGE},
                             {"-4294967295", 10, 1, 11},
                             {"-4294967296", 10, UINT32_MAX, 11, ERANGE},
                             {"-18446744073709551616", 10, UINT32_MAX, 21, ERANGE}}) {
        ExpectReadings(each, QXStrToULA, QXStrToULW);
    }
    for (const Case& each : {Case{"9223372036854775807", 10, INT64_MAX, 19},
                             {"9223372036854775808", 10, INT64_MAX, 19, ERANGE},
                             {"-9223372036854775808", 10, INT64_MIN, 20},
                             {"-9223372036854775809", 10, INT64_MIN, 20, ERANGE}}) {
        ExpectReadings(each, QXStrToLLA, QXStrToLLW);
        EXPECT_EQ(QXStrToI64W(Widen(each.text).c_str()), each.value);
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
    struct Row {
        std::string text;
        double value;
        std::ptrdiff_t end;
        int error = 0;
    };
    const std::string digits(500, '7');
    for (const Row& row : {Row{"", 0, 0},
                           {" \t-1.5e3x", -1500, 8},
                           {".5", 0.5, 2},
                           {"1e", 1, 1},
                           {"  e1", 0, 0},
                           {"0x1.8p1", 3, 7},
                           {"1,5", 1, 1},
                           {"-Infinity!", -INFINITY, 9},
                           {"1e999", HUGE_VAL, 5, ERANGE},
                           {digits + "e-500", 7.0 / 9, 505}}) {
        SCOPED_TRACE(row.text);
        const std::tuple expected(row.value, row.end, row.error);
        EXPECT_EQ(Read(QXStrToDA, ExactText(row.text)), expected);
        EXPECT_EQ(Read(QXStrToDW, ExactText(Widen(row.text))), expected);
    }
    EXPECT_TRUE(std::isnan(QXStrToDW(u"nan(1)", nullptr)));
}

// The longest number is found without a look at all that follows it: only a long one is copied.
TEST(StringNumber, NumbersOfAListAreReadOneByOne) {
    for (const char16_t* element : {u"-2e+1+", u"0x1p1-", u"infinityx"}) {
        std::u16string list;
        while (list.size() < 500) {
            list += element;
        }
        const auto text = ExactText(list);
        FailAllocation(1);
        const std::ptrdiff_t end = std::get<1>(Read(QXStrToDW, text));
        EXPECT_FALSE(AllocationHasFailed());
        FailAllocation(0);
        EXPECT_EQ(end, std::ssize(std::u16string_view(element)) - 1);
    }
}

TEST(StringNumber, LongNumberWithoutMemoryIsNone) {
    const auto digits = ExactText(std::u16string(121, u'7'));
    FailAllocation(1);
    const auto read = Read(QXStrToDW, digits);
    if (AllocationHasFailed()) {
        EXPECT_EQ(read, std::tuple(0.0, 0, ENOMEM));
    }
    FailAllocation(0);
}

TEST(StringNumber, NumbersAreWrittenWithASignInRadixTenAlone) {
    struct Row {
        int64_t value;
        int32_t radix;
        std::string as32, as64;
    };
    for (const Row& row : {Row{0, 2, "0", "0"},
                           {35, 36, "z", "z"},
                           {-1, 16, "ffffffff", "ffffffffffffffff"},
                           {-1, 2, std::string(32, '1'), std::string(64, '1')},
                           {INT32_MIN, 10, "-2147483648", "-2147483648"}}) {
        const auto value32 = static_cast<int32_t>(row.value);
        std::string narrow(64, '#');
        EXPECT_EQ(QXLToStrA(value32, narrow.data(), row.radix), row.as32);
        EXPECT_EQ(QXInt64ToStrA(row.value, narrow.data(), row.radix), row.as64);
        std::u16string wide(64, u'#');
        EXPECT_EQ(QXLToStrW(value32, wide.data(), row.radix), Widen(row.as32));
        EXPECT_EQ(QXInt64ToStrW(row.value, wide.data(), row.radix), Widen(row.as64));
    }
    char text[66] = "x";
    for (const int32_t radix : {-1, 1, 37}) {
        errno = 0;
        EXPECT_STREQ(QXLToStrA(5, text, radix), "");
        EXPECT_EQ(errno, EINVAL);
    }
}

}  // namespace

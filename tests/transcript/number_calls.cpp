#include <qxcore/string.h>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/calls.h"

namespace {

template <typename Unit>
std::basic_string<Unit> NumberIn(Random& random) {
    const std::string text = NumberText(random);
    return {text.begin(), text.end()};
}

template <typename Unit>
std::basic_string<Unit> FloatIn(Random& random) {
    std::string text = random.OneIn(3) ? " \t" : "";
    text += random.OneIn(4) ? "-" : "";
    text += random.OneIn(2)
                ? AnyWord(random,
                          "1.5 -0 .5 5. . 1e308 1e309 -1e309 4.9e-324 1e-400 1e 1e+ 1e+5x 0x1p3 "
                          "0x.8 0x inf nan INFIN infinity nan(12) 1,5 1d3 1D-2 0x1.8p-1074 "
                          "2.2250738585072011e-308 179769313486231580793728971405303415e273 "
                          "9007199254740993 0.1 123456789012345678901234567890.5e-10")
                : std::to_string(random.Next() >> random.Below(64)) + "." +
                      std::to_string(random.Below(100000)) + "e" +
                      std::to_string(static_cast<int>(random.Below(640)) - 320);
    text += random.OneIn(4) ? "x" : "";
    return {text.begin(), text.end()};
}

int32_t Radix(Random& random) {
    constexpr int32_t kRadixes[] = {0, 0, 2, 8, 10, 10, 16, 16, 36, 3, 1, 37, -1};
    return random.Of(kRadixes);
}

int32_t WrittenRadix(Random& random) {
    return random.OneIn(8) ? Radix(random) : static_cast<int32_t>(random.Between(2, 36));
}

// What a reader gives: the number, and how many units it took.
template <typename Number>
struct Reading {
    Number number;
    std::ptrdiff_t length;
};

template <auto kRead, typename Unit>
auto Read(const Unit* text, int32_t radix) {
    Unit* end = nullptr;
    const auto number = kRead(text, &end, radix);
    return Reading<decltype(number)>{number, end - text};
}

template <auto kRead, typename Unit>
auto ReadFloat(const Unit* text) {
    Unit* end = nullptr;
    const double number = allowance::NoNumberHasAnyBits(kRead(text, &end));
    errno = allowance::UnderflowMayBeNoError(number, errno);
    return Reading<double>{allowance::ZeroOfNothingHasAnySign(number, end == text), end - text};
}

}  // namespace

std::vector<Call> NumberCalls() {
    return {
        {"QXStrToIA", Row<kAndErrno>(QXStrToIA, NumberIn<char>)},
        {"QXStrToIW", Row<kAndErrno>(QXStrToIW, NumberIn<wchar>)},
        {"QXStrToI64W", Row<kAndErrno>(QXStrToI64W, NumberIn<wchar>)},
        {"QXStrToLA", Row<kAndErrno>(Read<QXStrToLA, char>, NumberIn<char>, Radix)},
        {"QXStrToLW", Row<kAndErrno>(Read<QXStrToLW, wchar>, NumberIn<wchar>, Radix)},
        {"QXStrToULA", Row<kAndErrno>(Read<QXStrToULA, char>, NumberIn<char>, Radix)},
        {"QXStrToULW", Row<kAndErrno>(Read<QXStrToULW, wchar>, NumberIn<wchar>, Radix)},
        {"QXStrToLLA", Row<kAndErrno>(Read<QXStrToLLA, char>, NumberIn<char>, Radix)},
        {"QXStrToLLW", Row<kAndErrno>(Read<QXStrToLLW, wchar>, NumberIn<wchar>, Radix)},
        {"QXStrToULLA", Row<kAndErrno>(Read<QXStrToULLA, char>, NumberIn<char>, Radix)},
        {"QXStrToDA", Row<kAndErrno>(ReadFloat<QXStrToDA, char>, FloatIn<char>)},
        {"QXStrToDW", Row<kAndErrno>(ReadFloat<QXStrToDW, wchar>, FloatIn<wchar>)},
        {"QXLToStrA",
         Row<kAndErrno>(QXLToStrA, AnyNumber<int32_t>, RoomFor<char, 66>, WrittenRadix)},
        {"QXLToStrW",
         Row<kAndErrno>(QXLToStrW, AnyNumber<int32_t>, RoomFor<wchar, 66>, WrittenRadix)},
        {"QXInt64ToStrA",
         Row<kAndErrno>(QXInt64ToStrA, AnyNumber<int64_t>, RoomFor<char, 66>, WrittenRadix)},
        {"QXInt64ToStrW",
         Row<kAndErrno>(QXInt64ToStrW, AnyNumber<int64_t>, RoomFor<wchar, 66>, WrittenRadix)},
    };
}

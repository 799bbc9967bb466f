#include <qxcore/string.h>

#include "transcript/allowances.h"
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

constexpr int32_t kRadixes[] = {0, 0, 2, 8, 10, 10, 16, 16, 36, 3, 1, 37, -1};
constexpr auto kRadix = AnyOf<kRadixes>;

int32_t WrittenRadix(Random& random) {
    return random.OneIn(8) ? kRadix(random) : static_cast<int32_t>(random.Between(2, 36));
}

template <auto kRead, typename Unit>
double ReadFloat(const Unit* text, Unit** end) {
    const double number = allowance::NoNumberHasAnyBits(kRead(text, end));
    errno = allowance::UnderflowMayBeNoError(number, errno);
    return allowance::ZeroOfNothingHasAnySign(number, *end == text);
}

}  // namespace

Calls NumberCalls() {
    return {
        CALLS_A_W(kAndErrno, QXStrToI, NumberIn<Unit>),
        CALL_WIDE(kAndErrno, QXStrToI64W, NumberIn<Unit>),
        CALLS_A_W(kAndErrno, QXStrToL, NumberIn<Unit>, End<Unit>, kRadix),
        CALLS_A_W(kAndErrno, QXStrToUL, NumberIn<Unit>, End<Unit>, kRadix),
        CALLS_A_W(kAndErrno, QXStrToLL, NumberIn<Unit>, End<Unit>, kRadix),
        {"QXStrToULLA", Row<kAndErrno>(QXStrToULLA, NumberIn<char>, End<char>, kRadix)},
        {"QXStrToDA", Row<kAndErrno>(ReadFloat<QXStrToDA, char>, FloatIn<char>, End<char>)},
        {"QXStrToDW", Row<kAndErrno>(ReadFloat<QXStrToDW, wchar>, FloatIn<wchar>, End<wchar>)},
        CALLS_A_W(kAndErrno, QXLToStr, AnyNumber<int32_t>, RoomFor<Unit, 66>, WrittenRadix),
        CALLS_A_W(kAndErrno, QXInt64ToStr, AnyNumber<int64_t>, RoomFor<Unit, 66>, WrittenRadix),
    };
}

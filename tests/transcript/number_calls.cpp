#include <qxcore/string.h>

#include <cerrno>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

template <typename Unit>
std::basic_string<Unit> NumberIn(Random& random) {
    const std::string text = NumberText(random);
    if constexpr (sizeof(Unit) == 1) {
        return text;
    } else {
        return Widen(text);
    }
}

int32_t Radix(Random& random) {
    constexpr int32_t kRadixes[] = {0, 0, 2, 8, 10, 10, 16, 16, 36, 3, 1, 37, -1};
    return random.Of(kRadixes);
}

template <typename Number, typename Unit>
MakeCall ReadDecimal(Number (*read)(const Unit*)) {
    return [read](Random& random, Line& line) {
        const auto text = NumberIn<Unit>(random);
        errno = 0;
        const Number number = read(text.c_str());
        const int error = errno;
        line.Add("text", text).Add("->", number).Add("errno", error);
    };
}

template <typename Number, typename Unit>
MakeCall ReadNumber(Number (*read)(const Unit*, Unit**, int32_t)) {
    return [read](Random& random, Line& line) {
        const auto text = NumberIn<Unit>(random);
        const int32_t radix = Radix(random);
        Unit* end = nullptr;
        errno = 0;
        const Number number = read(text.c_str(), &end, radix);
        const int error = errno;
        line.Add("text", text).Add("radix", radix).Add("->", number).Add("errno", error);
        line.Place("end", const_cast<const Unit*>(end), text.c_str());
    };
}

std::string FloatText(Random& random) {
    constexpr const char* kTexts[] = {"1.5",
                                      "-0",
                                      ".5",
                                      "5.",
                                      ".",
                                      "1e308",
                                      "1e309",
                                      "-1e309",
                                      "4.9e-324",
                                      "1e-400",
                                      "1e",
                                      "1e+",
                                      "1e+5x",
                                      "0x1p3",
                                      "0x.8",
                                      "0x",
                                      "inf",
                                      "nan",
                                      "INFIN",
                                      "infinity",
                                      "nan(12)",
                                      "1,5",
                                      "1d3",
                                      "1D-2",
                                      "0x1.8p-1074",
                                      "2.2250738585072011e-308",
                                      "179769313486231580793728971405303415e273",
                                      "9007199254740993",
                                      "0.1",
                                      "123456789012345678901234567890.5e-10"};
    std::string text = random.OneIn(3) ? " \t" : "";
    text += random.OneIn(4) ? "-" : "";
    text += random.OneIn(2) ? random.Of(kTexts)
                            : std::to_string(random.Next() >> random.Below(64)) + "." +
                                  std::to_string(random.Below(100000)) + "e" +
                                  std::to_string(static_cast<int>(random.Below(640)) - 320);
    return text + (random.OneIn(4) ? "x" : "");
}

template <typename Unit>
MakeCall ReadFloat(double (*read)(const Unit*, Unit**)) {
    return [read](Random& random, Line& line) {
        const std::string narrow = FloatText(random);
        const std::basic_string<Unit> text(narrow.begin(), narrow.end());
        Unit* end = nullptr;
        errno = 0;
        const double number = allowance::NoNumberHasAnyBits(read(text.c_str(), &end));
        const int error = allowance::UnderflowMayBeNoError(number, errno);
        const bool nothing = end == text.c_str();
        line.Add("text", text).Add("->", allowance::ZeroOfNothingHasAnySign(number, nothing));
        line.Add("errno", error).Place("end", const_cast<const Unit*>(end), text.c_str());
    };
}

template <typename Number, typename Unit>
MakeCall WriteNumber(Unit* (*write)(Number, Unit*, int32_t)) {
    return [write](Random& random, Line& line) {
        const auto number = AnyNumber<Number>(random);
        const int32_t radix = random.OneIn(8) ? Radix(random) : random.Between(2, 36);
        Buffer<Unit> buffer(66);
        errno = 0;
        const Unit* const written = write(number, buffer.Begin(), radix);
        const int error = errno;
        line.Add("number", number).Add("radix", radix).Add("errno", error);
        line.Place("->", written, const_cast<const Unit*>(buffer.Begin()));
        // Behind the terminator the buffer may have served for digits.
        line.Add("text", std::basic_string<Unit>(buffer.Begin()));
    };
}

}  // namespace

std::vector<Call> NumberCalls() {
    return {
        {"QXStrToIA", ReadDecimal(QXStrToIA)},
        {"QXStrToIW", ReadDecimal(QXStrToIW)},
        {"QXStrToI64W", ReadDecimal(QXStrToI64W)},
        {"QXStrToLA", ReadNumber(QXStrToLA)},
        {"QXStrToLW", ReadNumber(QXStrToLW)},
        {"QXStrToULA", ReadNumber(QXStrToULA)},
        {"QXStrToULW", ReadNumber(QXStrToULW)},
        {"QXStrToLLA", ReadNumber(QXStrToLLA)},
        {"QXStrToLLW", ReadNumber(QXStrToLLW)},
        {"QXStrToULLA", ReadNumber(QXStrToULLA)},
        {"QXStrToDA", ReadFloat(QXStrToDA)},
        {"QXStrToDW", ReadFloat(QXStrToDW)},
        {"QXLToStrA", WriteNumber(QXLToStrA)},
        {"QXLToStrW", WriteNumber(QXLToStrW)},
        {"QXInt64ToStrA", WriteNumber(QXInt64ToStrA)},
        {"QXInt64ToStrW", WriteNumber(QXInt64ToStrW)},
    };
}

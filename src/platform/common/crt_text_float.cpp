// Floating-point numbers from wide text, by way of the C library's narrow ones, which are exact on
// every platform.
#include <algorithm>
#include <cerrno>
#include <climits>
#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "platform/common/digit.h"
#include "platform/crt_text.h"

namespace platform {
namespace {

// The decimal point of the locale: one unit of wide text, but it may be several narrow ones.
struct DecimalPoint {
    DecimalPoint() noexcept : narrow(std::localeconv()->decimal_point) {
        wchar_t unit = L'.';
        std::mbstate_t state{};
        std::mbrtowc(&unit, narrow.data(), narrow.size(), &state);
        wide = static_cast<char16_t>(unit);
    }

    std::string_view narrow;
    char16_t wide;
};

// How far a number may reach; strtod decides how far it does. Each function takes the part of a
// number that it is named after, if it is there, and gives what is behind it.

bool IsLetter(char16_t unit, char16_t letter) noexcept {
    return (unit | 0x20) == letter;
}

const char16_t* SkipSign(const char16_t* text) noexcept {
    return text + (*text == '+' || *text == '-');
}

const char16_t* SkipDigits(const char16_t* text, unsigned radix) noexcept {
    while (DigitOf(*text) < radix) {
        ++text;
    }
    return text;
}

const char16_t* SkipDigitsAndExponent(const char16_t* text, char16_t point) noexcept {
    const bool isHex = text[0] == '0' && IsLetter(text[1], 'x');
    const unsigned radix = isHex ? 16 : 10;
    text = SkipDigits(isHex ? text + 2 : text, radix);
    if (*text == point) {
        text = SkipDigits(text + 1, radix);
    }
    return IsLetter(*text, isHex ? 'p' : 'e') ? SkipDigits(SkipSign(text + 1), 10) : text;
}

// The words for infinity and for what is no number, with the characters in parentheses that may
// follow the latter.
const char16_t* SkipWord(const char16_t* text) noexcept {
    constexpr std::u16string_view kLongest = u"infinity";
    const char16_t* end = text;
    while (end < text + kLongest.size() && DigitOf(*end) - 10 < 26) {
        ++end;
    }
    if (!IsLetter(*text, 'n') || *end != '(') {
        return end;
    }
    do {
        ++end;
    } while (DigitOf(*end) < 36 || *end == '_');
    return end + (*end == ')');
}

std::u16string_view GreatestNumber(const char16_t* text, char16_t point) noexcept {
    const char16_t* const start = SkipSign(text);
    const char16_t* const end = SkipWord(start);
    return {text, end != start ? end : SkipDigitsAndExponent(start, point)};
}

// A number's units are ASCII but for the point.
void CopyNarrow(std::u16string_view number, const DecimalPoint& point, char* target) noexcept {
    for (const char16_t unit : number) {
        target = unit == point.wide ? std::copy(point.narrow.begin(), point.narrow.end(), target)
                                    : std::fill_n(target, 1, static_cast<char>(unit));
    }
    *target = 0;
}

// The units of the number that stand for the first bytes of its copy.
std::size_t UnitsOf(std::size_t bytes, std::u16string_view number,
                    const DecimalPoint& point) noexcept {
    return bytes > number.find(point.wide) ? bytes - (point.narrow.size() - 1) : bytes;
}

}  // namespace

double wcstod(const char16_t* text, char16_t** end) noexcept {
    constexpr std::size_t kUnitsInFrame = 120;
    const DecimalPoint point;
    const char16_t* start = text;
    while (platform::iswspace(*start)) {
        ++start;
    }
    const std::u16string_view number = GreatestNumber(start, point.wide);
    char inFrame[kUnitsInFrame + MB_LEN_MAX];
    std::unique_ptr<char[]> onHeap;
    char* copy = inFrame;
    if (number.size() > kUnitsInFrame) {
        onHeap.reset(new (std::nothrow) char[number.size() + MB_LEN_MAX]);
        copy = onHeap.get();
    }
    double value = 0;
    const char16_t* last = text;
    if (copy != nullptr) {
        CopyNarrow(number, point, copy);
        char* stop = copy;
        value = std::strtod(copy, &stop);
        const auto read = static_cast<std::size_t>(stop - copy);
        last = read == 0 ? text : start + UnitsOf(read, number, point);
    } else {
        errno = ENOMEM;
    }
    if (end != nullptr) {
        *end = const_cast<char16_t*>(last);
    }
    return value;
}

}  // namespace platform

// Floating-point numbers from wide text, by way of the C library's own wide units.
#include <langinfo.h>
#include <wchar.h>

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <memory>
#include <new>
#include <string>

#include "platform/common/digit.h"
#include "platform/crt_text.h"

namespace platform {
namespace {

wchar_t DecimalPoint() noexcept {
    const char* const narrow = nl_langinfo(RADIXCHAR);
    wchar_t point = L'.';
    std::mbstate_t state{};
    std::mbrtowc(&point, narrow, std::char_traits<char>::length(narrow), &state);
    return point;
}

// How far a number may reach; wcstod decides how far it does. Each function takes the part of a
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

const char16_t* SkipDigitsAndExponent(const char16_t* text) noexcept {
    const bool isHex = text[0] == '0' && IsLetter(text[1], 'x');
    const unsigned radix = isHex ? 16 : 10;
    text = SkipDigits(isHex ? text + 2 : text, radix);
    if (static_cast<wchar_t>(*text) == DecimalPoint()) {
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

std::size_t GreatestLengthOfNumber(const char16_t* text) noexcept {
    const char16_t* const start = SkipSign(text);
    const char16_t* const end = SkipWord(start);
    return static_cast<std::size_t>((end != start ? end : SkipDigitsAndExponent(start)) - text);
}

}  // namespace

double wcstod(const char16_t* text, char16_t** end) noexcept {
    const char16_t* start = text;
    while (platform::iswspace(*start)) {
        ++start;
    }
    const std::size_t length = GreatestLengthOfNumber(start);
    wchar_t inFrame[121];
    std::unique_ptr<wchar_t[]> onHeap;
    wchar_t* copy = inFrame;
    if (length >= std::size(inFrame)) {
        onHeap.reset(new (std::nothrow) wchar_t[length + 1]);
        copy = onHeap.get();
    }
    double value = 0;
    const char16_t* last = text;
    if (copy != nullptr) {
        *std::copy(start, start + length, copy) = 0;
        wchar_t* stop = copy;
        value = std::wcstod(copy, &stop);
        last = stop == copy ? text : start + (stop - copy);
    } else {
        errno = ENOMEM;
    }
    if (end != nullptr) {
        *end = const_cast<char16_t*>(last);
    }
    return value;
}

}  // namespace platform

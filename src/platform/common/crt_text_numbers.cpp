// Whole numbers and text, with the reference platform's widths: a `long` of 32 bits, wide units of
// 16.
#include <algorithm>
#include <cerrno>
#include <iterator>
#include <limits>
#include <type_traits>

#include "platform/common/digit.h"
#include "platform/crt_text.h"

namespace platform {
namespace {

// ---- Reading

bool IsSpace(char unit) noexcept {
    return platform::isspace(unit) != 0;
}

bool IsSpace(char16_t unit) noexcept {
    return platform::iswspace(unit) != 0;
}

// A number before it gets its width: saturated at 64 bits.
template <typename Unit>
struct WholeNumber {
    u64 m_magnitude = 0;
    bool m_isNegative = false;
    bool m_overflows = false;
    const Unit* m_end;
};

template <typename Unit>
bool HasHexPrefix(const Unit* text) noexcept {
    return text[0] == '0' && (text[1] == 'x' || text[1] == 'X') && DigitOf(text[2]) < 16;
}

// Steps over the prefix and settles a radix of 0.
template <typename Unit>
const Unit* ReadPrefix(const Unit* text, int& radix) noexcept {
    if ((radix == 0 || radix == 16) && HasHexPrefix(text)) {
        radix = 16;
        return text + 2;
    }
    if (radix == 0) {
        radix = *text == '0' ? 8 : 10;
    }
    return text;
}

template <typename Unit>
void ReadDigits(const Unit* text, unsigned radix, WholeNumber<Unit>& number) noexcept {
    for (unsigned digit; (digit = DigitOf(*text)) < radix; ++text) {
        number.m_overflows |=
            __builtin_mul_overflow(number.m_magnitude, radix, &number.m_magnitude);
        number.m_overflows |=
            __builtin_add_overflow(number.m_magnitude, digit, &number.m_magnitude);
        number.m_end = text + 1;
    }
}

template <typename Unit>
WholeNumber<Unit> ReadNumber(const Unit* text, int radix) noexcept {
    WholeNumber<Unit> number{.m_end = text};
    if (radix < 0 || radix == 1 || radix > 36) {
        errno = EINVAL;
        return number;
    }
    while (IsSpace(*text)) {
        ++text;
    }
    number.m_isNegative = *text == '-';
    if (*text == '-' || *text == '+') {
        ++text;
    }
    text = ReadPrefix(text, radix);
    ReadDigits(text, static_cast<unsigned>(radix), number);
    return number;
}

// The value in the width of the result, where a negative number has one more to give than a
// positive.
template <typename Result, typename Unit>
Result Fit(const WholeNumber<Unit>& number) noexcept {
    using Limits = std::numeric_limits<Result>;
    constexpr bool kIsSigned = std::is_signed_v<Result>;
    const bool wantsLowest = kIsSigned && number.m_isNegative;
    const u64 greatest = static_cast<u64>(Limits::max()) + (wantsLowest ? 1 : 0);
    if (number.m_overflows || number.m_magnitude > greatest) {
        errno = ERANGE;
        return wantsLowest ? Limits::min() : Limits::max();
    }
    const u64 value = number.m_isNegative ? u64{0} - number.m_magnitude : number.m_magnitude;
    return static_cast<Result>(value);
}

template <typename Result, typename Unit>
Result Read(const Unit* text, Unit** end, int radix) noexcept {
    const WholeNumber<Unit> number = ReadNumber(text, radix);
    if (end != nullptr) {
        *end = const_cast<Unit*>(number.m_end);
    }
    return Fit<Result>(number);
}

// ---- Writing

template <typename Unit, typename Pattern>
Unit* Write(Pattern pattern, bool isNegative, Unit* buffer, int radix) noexcept {
    *buffer = 0;
    if (radix < 2 || radix > 36) {
        errno = EINVAL;
        return buffer;
    }
    Unit digits[std::numeric_limits<Pattern>::digits];
    Unit* first = std::end(digits);
    const auto base = static_cast<Pattern>(radix);
    do {
        *--first = static_cast<Unit>("0123456789abcdefghijklmnopqrstuvwxyz"[pattern % base]);
        pattern /= base;
    } while (pattern != 0);
    Unit* out = buffer;
    if (isNegative) {
        *out++ = '-';
    }
    *std::copy(first, std::end(digits), out) = 0;
    return buffer;
}

template <typename Unit, typename Value>
Unit* WriteSigned(Value value, Unit* buffer, int radix) noexcept {
    using Pattern = std::make_unsigned_t<Value>;
    const bool isNegative = value < 0 && radix == 10;
    const auto pattern = static_cast<Pattern>(value);
    return Write(isNegative ? Pattern{0} - pattern : pattern, isNegative, buffer, radix);
}

}  // namespace

int atoi(const char* text) noexcept {
    return Read<i32, char>(text, nullptr, 10);
}

int _wtoi(const char16_t* text) noexcept {
    return Read<i32, char16_t>(text, nullptr, 10);
}

i64 _wtoi64(const char16_t* text) noexcept {
    return Read<i64, char16_t>(text, nullptr, 10);
}

i32 strtol(const char* text, char** end, int radix) noexcept {
    return Read<i32>(text, end, radix);
}

u32 strtoul(const char* text, char** end, int radix) noexcept {
    return Read<u32>(text, end, radix);
}

i64 strtoll(const char* text, char** end, int radix) noexcept {
    return Read<i64>(text, end, radix);
}

u64 strtoull(const char* text, char** end, int radix) noexcept {
    return Read<u64>(text, end, radix);
}

i32 wcstol(const char16_t* text, char16_t** end, int radix) noexcept {
    return Read<i32>(text, end, radix);
}

u32 wcstoul(const char16_t* text, char16_t** end, int radix) noexcept {
    return Read<u32>(text, end, radix);
}

i64 wcstoll(const char16_t* text, char16_t** end, int radix) noexcept {
    return Read<i64>(text, end, radix);
}

char* _ltoa(i32 value, char* buffer, int radix) noexcept {
    return WriteSigned(value, buffer, radix);
}

char16_t* _ltow(i32 value, char16_t* buffer, int radix) noexcept {
    return WriteSigned(value, buffer, radix);
}

char* _i64toa(i64 value, char* buffer, int radix) noexcept {
    return WriteSigned(value, buffer, radix);
}

char16_t* _i64tow(i64 value, char16_t* buffer, int radix) noexcept {
    return WriteSigned(value, buffer, radix);
}

}  // namespace platform

#include "text/transform.h"

#include <qxcore/string.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <cstring>

#include "platform/common/utf_run.h"

namespace {

std::size_t LengthOf(const char* text) noexcept {
    return std::strlen(text);
}
std::size_t LengthOf(const char16_t* text) noexcept {
    return QXStrLenW(text);
}

// No sum of lengths leaves 32 bits for a text up to this.
constexpr std::size_t kLongest = INT32_MAX / 4;

// The start of the text that needs nothing of ICU. Arguments that it refuses, or that ask for a
// length only, are left to it whole.
template <typename Source, typename Target>
platform::UtfRun ConvertStart(Target* target, i32 capacity, const Source* source, i32 sourceLength,
                              i32 substitution) noexcept {
    if (target == nullptr || capacity <= 0 || source == nullptr || sourceLength < -1 ||
        substitution > 0x10FFFF || U_IS_SURROGATE(substitution)) {
        return {0, 0};
    }
    const std::size_t units =
        sourceLength >= 0 ? static_cast<std::size_t>(sourceLength) : LengthOf(source);
    if (units > kLongest) {
        return {0, 0};
    }
    return platform::ConvertUtfRun(source, units, target, static_cast<std::size_t>(capacity));
}

// The rest of the text, the terminator and every failure are ICU's.
template <typename Source, typename Target, typename Rest>
Target* Convert(Target* target, i32 capacity, i32* length, const Source* source, i32 sourceLength,
                i32 substitution, UErrorCode* status, Rest convertRest) noexcept {
    const platform::UtfRun run = ConvertStart(target, capacity, source, sourceLength, substitution);
    const i32 read = static_cast<i32>(run.read);
    const i32 written = static_cast<i32>(run.written);
    const Target* const end = convertRest(
        target + written, capacity - written, length, source + read,
        sourceLength >= 0 ? sourceLength - read : sourceLength, substitution, nullptr, status);
    if (length != nullptr && (U_SUCCESS(*status) || *status == U_BUFFER_OVERFLOW_ERROR)) {
        *length += written;
    }
    return end != nullptr ? target : nullptr;
}

}  // namespace

char16_t* Utf16FromUtf8(char16_t* target, i32 capacity, i32* length, const char* source,
                        i32 sourceLength, i32 substitution, UErrorCode* status) noexcept {
    return Convert(target, capacity, length, source, sourceLength, substitution, status,
                   u_strFromUTF8WithSub);
}

char* Utf8FromUtf16(char* target, i32 capacity, i32* length, const char16_t* source,
                    i32 sourceLength, i32 substitution, UErrorCode* status) noexcept {
    return Convert(target, capacity, length, source, sourceLength, substitution, status,
                   u_strToUTF8WithSub);
}

// Comparison.
#include <qxcore/string.h>
#include <unicode/stringoptions.h>
#include <unicode/ustring.h>

#include <cstring>

#include "platform/crt_text.h"
#include "platform/types.h"
#include "text/unit_scan.h"

namespace {

constexpr u32 kCodePointOrder = U_COMPARE_CODE_POINT_ORDER;

// The argument of QXStrNICmpUTF16 has never counted; callers rely on three units.
constexpr i32 kUnitsOfNICmpUTF16 = 3;

i32 SignOf(i32 difference) {
    return (difference > 0) - (difference < 0);
}

// Behind the first unit that is not ASCII, lower case decides. Not every runtime takes a count of
// all ones for no limit.

i32 CompareLower(const char* first, const char* second, std::size_t) {
    return platform::_stricmp(first, second);
}

i32 CompareLowerWithin(const char* first, const char* second, std::size_t count) {
    return platform::_strnicmp(first, second, count);
}

}  // namespace

int32_t QXStrCmpA(const char* first, const char* second) {
    return SignOf(std::strcmp(first, second));
}

int32_t QXStrCmpW(const wchar* first, const wchar* second) {
    return unit_scan::Order(first, second);
}

int32_t QXStrCmpUCS2(const wchar* first, const wchar* second) {
    return unit_scan::Compare(first, second);
}

int32_t QXStrCmpUTF16(const wchar* first, const wchar* second) {
    return u_strcmpCodePointOrder(first, second);
}

int32_t QXStrICmpA(const char* first, const char* second) {
    return unit_scan::CompareUpper(first, second, CompareLower);
}

int32_t QXStrICmpW(const wchar* first, const wchar* second) {
    return platform::_wcsicmp(first, second);
}

int32_t QXStrICmpUCS2(const wchar* first, const wchar* second) {
    const std::size_t index = unit_scan::FindLowerDifference(first, second);
    const auto fold = unit_scan::FoldAscii<char16_t, 'A'>();
    return fold(static_cast<u16>(first[index])) - fold(static_cast<u16>(second[index]));
}

int32_t QXStrICmpUTF16(const wchar* first, const wchar* second) {
    return u_strcasecmp(first, second, kCodePointOrder);
}

int32_t QXStrNCmpA(const char* first, const char* second, size_t count) {
    return std::strncmp(first, second, count);
}

int32_t QXStrNCmpW(const wchar* first, const wchar* second, size_t count) {
    return unit_scan::Compare(first, second, count);
}

int32_t QXStrNCmpUTF16(const wchar* first, const wchar* second, size_t count) {
    return u_strncmpCodePointOrder(first, second, static_cast<i32>(count));
}

int32_t QXStrNICmpA(const char* first, const char* second, size_t count) {
    return unit_scan::CompareUpper(first, second, count, CompareLowerWithin);
}

int32_t QXStrNICmpW(const wchar* first, const wchar* second, size_t count) {
    return platform::_wcsnicmp(first, second, count);
}

int32_t QXStrNICmpUTF16(const wchar* first, const wchar* second, size_t) {
    return u_strncasecmp(first, second, kUnitsOfNICmpUTF16, kCodePointOrder);
}

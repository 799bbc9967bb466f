// Comparison and case mapping without regard to case, as the reference platform's C runtime does
// it.
#include "platform/crt_text.h"

#include <cstdint>
#include <cwchar>
#include <new>
#include <string>

#include "utf8.h"

namespace platform {
namespace {

// Texts compare as unsigned units.

int LowerOf(char unit) noexcept {
    return platform::tolower(static_cast<unsigned char>(unit));
}

int LowerOf(char16_t unit) noexcept {
    return platform::towlower(unit);
}

template <typename Unit>
int CompareLower(const Unit* first, const Unit* second, std::size_t count) noexcept {
    for (std::size_t index = 0; index < count; ++index) {
        const int difference =
            first[index] == second[index] ? 0 : LowerOf(first[index]) - LowerOf(second[index]);
        if (difference != 0 || first[index] == 0) {
            return difference;
        }
    }
    return 0;
}

// What is as it should be is not written to: the text may be constant.
template <typename Unit, typename Map>
Unit* MapInPlace(Unit* text, Map map) noexcept {
    for (Unit* unit = text; *unit != 0; ++unit) {
        const auto mapped = static_cast<Unit>(map(*unit));
        if (mapped != *unit) {
            *unit = mapped;
        }
    }
    return text;
}

// In the C library's own wide characters.
std::wstring LowerWide(const char16_t* text) {
    std::wstring lower;
    while (*text != 0) {
        const utf::Decoded read = utf::DecodeUtf16(text, UINT64_MAX);
        lower += read.units == 1 ? static_cast<wchar_t>(towlower(*text))
                                 : static_cast<wchar_t>(read.character);
        text += read.units;
    }
    return lower;
}

}  // namespace

int _stricmp(const char* first, const char* second) noexcept {
    return CompareLower(first, second, SIZE_MAX);
}

int _strnicmp(const char* first, const char* second, std::size_t count) noexcept {
    return CompareLower(first, second, count);
}

int _wcsicmp(const char16_t* first, const char16_t* second) noexcept {
    return CompareLower(first, second, SIZE_MAX);
}

int _wcsnicmp(const char16_t* first, const char16_t* second, std::size_t count) noexcept {
    return CompareLower(first, second, count);
}

int _wcsicoll(const char16_t* first, const char16_t* second) noexcept {
    try {
        return std::wcscoll(LowerWide(first).c_str(), LowerWide(second).c_str());
    } catch (const std::bad_alloc&) {
        return _wcsicmp(first, second);
    }
}

char* _strlwr(char* text) noexcept {
    return MapInPlace(text, platform::tolower);
}

char* _strupr(char* text) noexcept {
    return MapInPlace(text, platform::toupper);
}

char16_t* _wcslwr(char16_t* text) noexcept {
    return MapInPlace(text, platform::towlower);
}

char16_t* _wcsupr(char16_t* text) noexcept {
    return MapInPlace(text, platform::towupper);
}

}  // namespace platform

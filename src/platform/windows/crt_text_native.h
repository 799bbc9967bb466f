#ifndef QX_PLATFORM_WINDOWS_CRT_TEXT_NATIVE_H
#define QX_PLATFORM_WINDOWS_CRT_TEXT_NATIVE_H

#include <cctype>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <cwctype>

#include "platform/types.h"
#include "platform/windows/system_headers.h"

namespace platform {

inline char16_t* FromNative(WCHAR* text) noexcept {
    return reinterpret_cast<char16_t*>(text);
}

inline int _stricmp(const char* first, const char* second) noexcept {
    return ::_stricmp(first, second);
}

inline int _strnicmp(const char* first, const char* second, std::size_t count) noexcept {
    return ::_strnicmp(first, second, count);
}

inline int _wcsicmp(const char16_t* first, const char16_t* second) noexcept {
    return ::_wcsicmp(Native(first), Native(second));
}

inline int _wcsnicmp(const char16_t* first, const char16_t* second, std::size_t count) noexcept {
    return ::_wcsnicmp(Native(first), Native(second), count);
}

inline int _wcsicoll(const char16_t* first, const char16_t* second) noexcept {
    return ::_wcsicoll(Native(first), Native(second));
}

inline char* _strlwr(char* text) noexcept {
    return ::_strlwr(text);
}

inline char* _strupr(char* text) noexcept {
    return ::_strupr(text);
}

inline char16_t* _wcslwr(char16_t* text) noexcept {
    return FromNative(::_wcslwr(Native(text)));
}

inline char16_t* _wcsupr(char16_t* text) noexcept {
    return FromNative(::_wcsupr(Native(text)));
}

inline int tolower(int unit) noexcept {
    return ::tolower(unit);
}

inline int toupper(int unit) noexcept {
    return ::toupper(unit);
}

inline int isalpha(int unit) noexcept {
    return ::isalpha(unit);
}

inline int isdigit(int unit) noexcept {
    return ::isdigit(unit);
}

inline int isspace(int unit) noexcept {
    return ::isspace(unit);
}

inline char16_t towlower(char16_t unit) noexcept {
    return ::towlower(unit);
}

inline char16_t towupper(char16_t unit) noexcept {
    return ::towupper(unit);
}

inline int iswalpha(char16_t unit) noexcept {
    return ::iswalpha(unit);
}

inline int iswdigit(char16_t unit) noexcept {
    return ::iswdigit(unit);
}

inline int iswspace(char16_t unit) noexcept {
    return ::iswspace(unit);
}

}  // namespace platform

#endif

// The mappings of single units, which the loops over text inline.
#ifndef QX_PLATFORM_POSIX_CRT_TEXT_NATIVE_H
#define QX_PLATFORM_POSIX_CRT_TEXT_NATIVE_H

#include <cwctype>

namespace platform {

// Narrow text is UTF-8 whatever the locale says, so the C library's tables are not asked.

inline int tolower(int unit) noexcept {
    return unit >= 'A' && unit <= 'Z' ? unit | 0x20 : unit;
}

inline int toupper(int unit) noexcept {
    return unit >= 'a' && unit <= 'z' ? unit & ~0x20 : unit;
}

inline int isalpha(int unit) noexcept {
    const int lower = unit | 0x20;
    return lower >= 'a' && lower <= 'z';
}

inline int isdigit(int unit) noexcept {
    return unit >= '0' && unit <= '9';
}

inline int isspace(int unit) noexcept {
    return unit == ' ' || (unit >= '\t' && unit <= '\r');
}

// No character of the first plane maps out of it. ASCII letters are pairs in every locale, as on
// the reference platform, also where the C library pairs "i" with a capital that has a dot.

inline char16_t towlower(char16_t unit) noexcept {
    return unit < 0x80 ? static_cast<char16_t>(platform::tolower(unit))
                       : static_cast<char16_t>(std::towlower(unit));
}

inline char16_t towupper(char16_t unit) noexcept {
    return unit < 0x80 ? static_cast<char16_t>(platform::toupper(unit))
                       : static_cast<char16_t>(std::towupper(unit));
}

inline int iswalpha(char16_t unit) noexcept {
    return std::iswalpha(unit);
}

inline int iswdigit(char16_t unit) noexcept {
    return std::iswdigit(unit);
}

inline int iswspace(char16_t unit) noexcept {
    return std::iswspace(unit);
}

}  // namespace platform

#endif

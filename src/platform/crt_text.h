// The functions of the C runtime over text that exist on one platform only, or whose wide unit,
// whose `long` or whose treatment of narrow units from 0x80 up is not the same everywhere.
#ifndef QX_PLATFORM_CRT_TEXT_H
#define QX_PLATFORM_CRT_TEXT_H

#include <crt_text_native.h>

#include <cstdarg>

#include "platform/types.h"

namespace platform {

// Nothing here blocks, allocates (but for wcstod and where it is said) or sets the last error. Wide
// units are 16 bits. "The locale" is the process's own, or the calling thread's if it has one.

// Comparisons give the difference of the first pair of units that differ when both are mapped to
// lower case, or 0. ASCII letters are mapped as such in every locale, wide units above by the
// locale, narrow ones to themselves where narrow text is UTF-8 and by its code page elsewhere.
int _stricmp(const char* first, const char* second) noexcept;
int _strnicmp(const char* first, const char* second, std::size_t count) noexcept;
int _wcsicmp(const char16_t* first, const char16_t* second) noexcept;
int _wcsnicmp(const char16_t* first, const char16_t* second, std::size_t count) noexcept;

// Compares by the locale's collation, without regard to case. May allocate.
int _wcsicoll(const char16_t* first, const char16_t* second) noexcept;

// Map a text in place, by the same rules, and give its address.
char* _strlwr(char* text) noexcept;
char* _strupr(char* text) noexcept;
char16_t* _wcslwr(char16_t* text) noexcept;
char16_t* _wcsupr(char16_t* text) noexcept;

// A narrow unit comes as a sign-extended number. Where narrow text is UTF-8, a negative one maps to
// itself and has no class; elsewhere its code page decides.
int tolower(int unit) noexcept;
int toupper(int unit) noexcept;
int isalpha(int unit) noexcept;
int isdigit(int unit) noexcept;
int isspace(int unit) noexcept;

// By the locale, ASCII letters as such. A surrogate maps to itself and has no class.
char16_t towlower(char16_t unit) noexcept;
char16_t towupper(char16_t unit) noexcept;
int iswalpha(char16_t unit) noexcept;
int iswdigit(char16_t unit) noexcept;
int iswspace(char16_t unit) noexcept;

// Our own on every platform (common/). Read a whole number: white space, a sign, digits. What does
// not fit becomes the nearest of the range (of the unsigned forms the greatest, decided before a
// minus sign negates), and errno ERANGE. `end` may be null; it receives the beginning of the text
// if there is no number. A radix is 0 or 2 to 36: another one gives 0 and errno EINVAL.
int atoi(const char* text) noexcept;
int _wtoi(const char16_t* text) noexcept;
i64 _wtoi64(const char16_t* text) noexcept;
i32 strtol(const char* text, char** end, int radix) noexcept;
u32 strtoul(const char* text, char** end, int radix) noexcept;
i64 strtoll(const char* text, char** end, int radix) noexcept;
u64 strtoull(const char* text, char** end, int radix) noexcept;
i32 wcstol(const char16_t* text, char16_t** end, int radix) noexcept;
u32 wcstoul(const char16_t* text, char16_t** end, int radix) noexcept;
i64 wcstoll(const char16_t* text, char16_t** end, int radix) noexcept;

// As strtod, with the decimal point of the locale. A number of more than 120 units needs the heap:
// if that is full, the result is 0 and errno ENOMEM.
double wcstod(const char16_t* text, char16_t** end) noexcept;

// Our own on every platform. Write a number in a radix of 2 to 36, with small letters and a minus
// sign for radix 10 only, and give the buffer. Another radix gives an empty text and errno EINVAL.
char* _ltoa(i32 value, char* buffer, int radix) noexcept;
char16_t* _ltow(i32 value, char16_t* buffer, int radix) noexcept;
char* _i64toa(i64 value, char* buffer, int radix) noexcept;
char16_t* _i64tow(i64 value, char16_t* buffer, int radix) noexcept;

// Our own on every platform. Writes formatted text of at most `size` units and gives their number;
// the terminator is stored if there is room for it. Text that is longer is cut, and the result is
// -1. Nothing behind the end of the buffer is read from a text argument but for one unit.
//
// `%s`, `%ls` and `%ws` take wide text, `%hs` and `%S` narrow text, and `%c` its single units in
// the same way. A null text is "(null)". A width and a precision count units. Whole numbers take
// the prefixes hh, h, l, ll, j, z, t, I, I32 and I64; `l` is the C compiler's `long`. `%n` writes
// nothing.
int _vsnwprintf(char16_t* buffer, std::size_t size, const char16_t* format,
                std::va_list arguments) noexcept;

}  // namespace platform

#endif

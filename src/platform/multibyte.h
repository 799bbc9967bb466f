// Narrow text to wide text and back. On every platform the narrow text of the process is meant; the
// posix side takes it as UTF-8, always and in all four operations.
#ifndef QX_PLATFORM_MULTIBYTE_H
#define QX_PLATFORM_MULTIBYTE_H

#include <multibyte_native.h>

#include <cstddef>

#include "platform/types.h"

namespace platform {

// The C runtime's pair. `source` is terminated. Stops behind the terminator, which is stored but
// not counted, or when `limit` units of the target are used up; a character that does not fit is
// not begun. With a null target the whole text is measured. All ones on text that is ill-formed;
// errno is then EILSEQ. Neither blocks nor sets the last error.
std::size_t mbstowcs(char16_t* target, const char* source, std::size_t limit) noexcept;
std::size_t wcstombs(char* target, const char16_t* source, std::size_t limit) noexcept;

// The system's pair, with code page 0 and flags 0. `length` counts units of the source; a
// terminator among them is an ordinary character. With a `capacity` of 0 the result is the number
// of units that are needed, otherwise the number that is stored. What is ill-formed becomes U+FFFD.
// 0 on failure: the last error is 122 if the target is too small.
i32 MultiByteToWideChar(const char* source, i32 length, char16_t* target, i32 capacity) noexcept;
i32 WideCharToMultiByte(const char16_t* source, i32 length, char* target, i32 capacity) noexcept;

}  // namespace platform

#endif

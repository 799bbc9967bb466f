// UTF-8 to UTF-16 and back, with ICU's results.
#ifndef QX_TEXT_TRANSFORM_H
#define QX_TEXT_TRANSFORM_H

#include <unicode/utypes.h>

#include "platform/types.h"

// As u_strFromUTF8WithSub and u_strToUTF8WithSub without their count of substitutions, to the last
// unit; only faster. `length` may be null and is left alone where ICU stores none.
char16_t* Utf16FromUtf8(char16_t* target, i32 capacity, i32* length, const char* source,
                        i32 sourceLength, i32 substitution, UErrorCode* status) noexcept;
char* Utf8FromUtf16(char* target, i32 capacity, i32* length, const char16_t* source,
                    i32 sourceLength, i32 substitution, UErrorCode* status) noexcept;

// For the two above: bad input stops the conversion.
constexpr i32 kNoSubstitution = -1;

#endif

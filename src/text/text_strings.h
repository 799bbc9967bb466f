// Narrow and wide text as owned strings. What is ill-formed becomes U+FFFD; text of no length, or
// too long for the platform's conversion, gives an empty string.
#ifndef QX_TEXT_TEXT_STRINGS_H
#define QX_TEXT_TEXT_STRINGS_H

#include <string>

std::u16string QXNarrowToWideString(const char* text);
std::string QXWideToNarrowString(const char16_t* text);

#endif

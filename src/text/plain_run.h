// The start of a text that converts without a question: well-formed, and with room for it.
#ifndef QX_TEXT_PLAIN_RUN_H
#define QX_TEXT_PLAIN_RUN_H

#include <cstddef>

// How far a conversion got, in units of either side. It never ends within a character.
struct PlainRun {
    std::size_t read;
    std::size_t written;
};

PlainRun ConvertPlainRun(const char* source, std::size_t length, char16_t* target,
                         std::size_t capacity) noexcept;
PlainRun ConvertPlainRun(const char16_t* source, std::size_t length, char* target,
                         std::size_t capacity) noexcept;

// The same for ASCII alone: the units that were converted. There is room for all of `length`.
std::size_t ConvertAsciiRun(const char* source, std::size_t length, char16_t* target) noexcept;

// The bytes of ASCII that the text begins with.
std::size_t AsciiRunLength(const char* text, std::size_t length) noexcept;

#endif

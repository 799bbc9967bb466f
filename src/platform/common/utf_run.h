// The start of a text from UTF-8 to UTF-16 or back, at speed.
#ifndef QX_PLATFORM_COMMON_UTF_RUN_H
#define QX_PLATFORM_COMMON_UTF_RUN_H

#include <cstddef>

namespace platform {

// How far a conversion got, in units of either side. It never ends within a character.
struct UtfRun {
    std::size_t read;
    std::size_t written;
};

// Converts well-formed text until it ends or is ill-formed, or its end or that of the target comes
// near. The rest, of which a few units always remain, is the caller's.
UtfRun ConvertUtfRun(const char* source, std::size_t length, char16_t* target,
                     std::size_t capacity) noexcept;
UtfRun ConvertUtfRun(const char16_t* source, std::size_t length, char* target,
                     std::size_t capacity) noexcept;

// Converts ASCII, to the end of the text or to the first byte that is none. There is room for all.
// The number of units.
std::size_t ConvertAsciiRun(const char* source, std::size_t length, char16_t* target) noexcept;

}  // namespace platform

#endif

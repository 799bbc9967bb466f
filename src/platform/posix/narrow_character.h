// The first character of a narrow text that is not empty, in wide units.
#ifndef QX_PLATFORM_POSIX_NARROW_CHARACTER_H
#define QX_PLATFORM_POSIX_NARROW_CHARACTER_H

#include "utf8.h"

namespace platform {

// The bytes that it takes and its one or two units.
struct NarrowCharacter {
    u32 bytes;
    u32 length;
    char16_t units[2];
};

// Of what is no character, one replacement. Nothing behind the terminator is read.
inline NarrowCharacter ReadNarrowCharacter(const char* text) noexcept {
    const utf::Decoded read = utf::DecodeUtf8(text, UINT64_MAX);
    const auto encoded =
        utf::EncodeUtf16(read.character != utf::kIllFormed ? read.character : utf::kReplacement);
    return {read.units, encoded.length, {encoded.units[0], encoded.units[1]}};
}

}  // namespace platform

#endif

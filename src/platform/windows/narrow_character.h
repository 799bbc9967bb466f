// The first character of a narrow text that is not empty, in wide units.
#ifndef QX_PLATFORM_WINDOWS_NARROW_CHARACTER_H
#define QX_PLATFORM_WINDOWS_NARROW_CHARACTER_H

#include "platform/windows/system_headers.h"

namespace platform {

// The bytes that it takes and its one or two units.
struct NarrowCharacter {
    u32 bytes;
    u32 length;
    char16_t units[2];
};

// By the code page, whichever it is: the shortest start that is a character. Of what is none, one
// replacement. Nothing behind the terminator is read.
inline NarrowCharacter ReadNarrowCharacter(const char* text) noexcept {
    constexpr int kLongestCharacter = 4;
    NarrowCharacter character = {1, 1, {static_cast<u8>(text[0]), 0}};
    if (character.units[0] < 0x80) {
        return character;
    }
    for (int bytes = 1; bytes <= kLongestCharacter && text[bytes - 1] != '\0'; ++bytes) {
        const int length = ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text, bytes,
                                                 Native(character.units), 2);
        if (length > 0) {
            character.bytes = static_cast<u32>(bytes);
            character.length = static_cast<u32>(length);
            return character;
        }
    }
    return {1, 1, {u'\xFFFD', 0}};
}

}  // namespace platform

#endif

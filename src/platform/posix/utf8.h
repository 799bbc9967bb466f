// Single characters in UTF-8 and UTF-16.
#ifndef QX_PLATFORM_POSIX_UTF8_H
#define QX_PLATFORM_POSIX_UTF8_H

#include "platform/types.h"

namespace platform::utf {

constexpr char32_t kIllFormed = 0xFFFFFFFF;
constexpr char32_t kReplacement = 0xFFFD;

// A character that was read, or kIllFormed, and the number of units that it takes.
struct Decoded {
    char32_t character;
    u32 units;
};

constexpr bool IsLead(char32_t unit) {
    return (unit & 0xFFFFFC00) == 0xD800;
}

constexpr bool IsTrail(char32_t unit) {
    return (unit & 0xFFFFFC00) == 0xDC00;
}

// Reads at most `available` bytes, of which there is at least one, and none behind the first that
// does not belong to the character: terminated text may be read with any number. Ill-formed text
// takes the longest prefix that could have begun a character, or one byte.
inline Decoded DecodeUtf8(const char* text, u64 available) noexcept {
    const auto byteAt = [text](u32 index) { return static_cast<u8>(text[index]); };
    const u8 first = byteAt(0);
    if (first < 0x80) {
        return {first, 1};
    }
    if (first < 0xC2 || first > 0xF4) {
        return {kIllFormed, 1};
    }
    const u32 length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    // The second byte's range is what shuts out overlong forms, surrogates and what lies beyond
    // U+10FFFF.
    u8 lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    u8 highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    char32_t character = first & (0x7Fu >> length);
    for (u32 index = 1; index < length; ++index) {
        if (index == available || byteAt(index) < lowest || byteAt(index) > highest) {
            return {kIllFormed, index};
        }
        character = character << 6 | (byteAt(index) & 0x3F);
        lowest = 0x80;
        highest = 0xBF;
    }
    return {character, length};
}

// The same for UTF-16.
inline Decoded DecodeUtf16(const char16_t* text, u64 available) noexcept {
    const char32_t first = text[0];
    if (!IsLead(first) && !IsTrail(first)) {
        return {first, 1};
    }
    if (IsTrail(first) || available < 2 || !IsTrail(text[1])) {
        return {kIllFormed, 1};
    }
    return {(first << 10) + text[1] - 0x35FDC00, 2};
}

// One character in its units.
template <typename Unit>
struct Encoded {
    Unit units[4 / sizeof(Unit)];
    u32 length;
};

inline Encoded<char16_t> EncodeUtf16(char32_t character) noexcept {
    if (character < 0x10000) {
        return {{static_cast<char16_t>(character)}, 1};
    }
    return {{static_cast<char16_t>((character >> 10) + 0xD7C0),
             static_cast<char16_t>((character & 0x3FF) | 0xDC00)},
            2};
}

inline Encoded<char> EncodeUtf8(char32_t character) noexcept {
    const auto tail = [character](u32 shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        return {{static_cast<char>(character)}, 1};
    }
    if (character < 0x800) {
        return {{static_cast<char>(0xC0 | character >> 6), tail(0)}, 2};
    }
    if (character < 0x10000) {
        return {{static_cast<char>(0xE0 | character >> 12), tail(6), tail(0)}, 3};
    }
    return {{static_cast<char>(0xF0 | character >> 18), tail(12), tail(6), tail(0)}, 4};
}

}  // namespace platform::utf

#endif

#include "platform/common/utf_run.h"

#include <algorithm>
#include <cstring>

#include "platform/types.h"

namespace platform {
namespace {

// Units that are looked at together.
constexpr std::ptrdiff_t kBlock = 16;

using Bytes [[gnu::vector_size(kBlock)]] = u8;
using Units [[gnu::vector_size(kBlock * 2)]] = u16;

// Both convert a block if it is all ASCII.
bool ConvertAsciiBlock(const char* source, char16_t* target) noexcept {
    u64 words[2];
    std::memcpy(words, source, sizeof words);
    if (((words[0] | words[1]) & 0x8080808080808080) != 0) {
        return false;
    }
    Bytes bytes;
    std::memcpy(&bytes, source, sizeof bytes);
    const Units units = __builtin_convertvector(bytes, Units);
    std::memcpy(target, &units, sizeof units);
    return true;
}

bool ConvertAsciiBlock(const char16_t* source, char* target) noexcept {
    u64 words[4];
    std::memcpy(words, source, sizeof words);
    if (((words[0] | words[1] | words[2] | words[3]) & 0xFF80FF80FF80FF80) != 0) {
        return false;
    }
    Units units;
    std::memcpy(&units, source, sizeof units);
    const Bytes bytes = __builtin_convertvector(units, Bytes);
    std::memcpy(target, &bytes, sizeof bytes);
    return true;
}

// The value of a byte behind the first of a character; more than 6 bits if it is not one.
u32 Tail(const char* source) noexcept {
    return static_cast<u8>(*source) ^ 0x80u;
}

bool IsSurrogate(u32 value) noexcept {
    return (value & 0xFFFFF800) == 0xD800;
}

// The sequences of each length. False, and nothing moves, if one is ill-formed.
bool ConvertPair(const char*& source, char16_t*& target) noexcept {
    const u32 lead = static_cast<u8>(source[0]);
    const u32 second = Tail(source + 1);
    if (lead < 0xC2 || second > 0x3F) [[unlikely]] {
        return false;
    }
    *target++ = static_cast<char16_t>((lead & 0x1F) << 6 | second);
    source += 2;
    return true;
}

bool ConvertTriple(const char*& source, char16_t*& target) noexcept {
    const u32 second = Tail(source + 1);
    const u32 third = Tail(source + 2);
    const u32 value = (static_cast<u8>(source[0]) & 0x0Fu) << 12 | second << 6 | third;
    if ((second | third) > 0x3F || value < 0x800 || IsSurrogate(value)) [[unlikely]] {
        return false;
    }
    *target++ = static_cast<char16_t>(value);
    source += 3;
    return true;
}

bool ConvertQuadruple(const char*& source, char16_t*& target) noexcept {
    const u32 second = Tail(source + 1);
    const u32 third = Tail(source + 2);
    const u32 fourth = Tail(source + 3);
    const u32 value =
        (static_cast<u8>(source[0]) & 0x0Fu) << 18 | second << 12 | third << 6 | fourth;
    if ((second | third | fourth) > 0x3F || value < 0x10000 || value > 0x10FFFF) [[unlikely]] {
        return false;
    }
    *target++ = static_cast<char16_t>((value >> 10) + 0xD7C0);
    *target++ = static_cast<char16_t>((value & 0x3FF) | 0xDC00);
    source += 4;
    return true;
}

// Both convert one character and move behind it. False, and nothing moves, if it is ill-formed. At
// least the longest character can be read and written.
bool ConvertCharacter(const char*& source, char16_t*& target) noexcept {
    const auto lead = static_cast<u8>(*source);
    if (lead < 0x80) {
        *target++ = lead;
        ++source;
        return true;
    }
    if (lead >= 0xE0 && lead < 0xF0) {
        return ConvertTriple(source, target);
    }
    return lead < 0xE0 ? ConvertPair(source, target) : ConvertQuadruple(source, target);
}

// The byte behind the first that holds the lowest 6 bits of a value.
char TailByte(u32 value) noexcept {
    return static_cast<char>(0x80 | (value & 0x3F));
}

void WriteTriple(u32 unit, char*& target) noexcept {
    target[0] = static_cast<char>(0xE0 | unit >> 12);
    target[1] = TailByte(unit >> 6);
    target[2] = TailByte(unit);
    target += 3;
}

void WriteQuadruple(u32 value, char*& target) noexcept {
    target[0] = static_cast<char>(0xF0 | value >> 18);
    target[1] = TailByte(value >> 12);
    target[2] = TailByte(value >> 6);
    target[3] = TailByte(value);
    target += 4;
}

bool ConvertCharacter(const char16_t*& source, char*& target) noexcept {
    const u32 unit = *source;
    if (unit < 0x80) {
        *target++ = static_cast<char>(unit);
    } else if (unit < 0x800) {
        target[0] = static_cast<char>(0xC0 | unit >> 6);
        target[1] = TailByte(unit);
        target += 2;
    } else if (!IsSurrogate(unit)) {
        WriteTriple(unit, target);
    } else {
        const u32 trail = source[1];
        if (unit > 0xDBFF || (trail & 0xFC00) != 0xDC00) {
            return false;
        }
        WriteQuadruple((unit << 10) + trail - 0x35FDC00, target);
        ++source;
    }
    ++source;
    return true;
}

// `kLongest` is the length of the longest character, `kGrowth` what a unit may become;
// `kStretch` units are taken one by one where a block is not all ASCII.
template <std::ptrdiff_t kLongest, std::ptrdiff_t kGrowth, std::ptrdiff_t kStretch, typename Source,
          typename Target>
UtfRun Convert(const Source* source, std::size_t length, Target* target,
               std::size_t capacity) noexcept {
    const Source* from = source;
    Target* to = target;
    const Source* const end = source + length;
    // A capacity may stand for "no limit", which no address can be made of.
    const Target* const room = target + std::min(capacity, length * kGrowth);
    while (end - from >= kBlock && room - to >= kBlock * kGrowth) {
        if (ConvertAsciiBlock(from, to)) {
            from += kBlock;
            to += kBlock;
            continue;
        }
        const auto stretch =
            kStretch == kBlock ? kBlock : std::min({end - from, (room - to) / kGrowth, kStretch});
        const Source* const last = from + stretch - kLongest;
        while (from <= last) {
            if (!ConvertCharacter(from, to)) {
                return {static_cast<std::size_t>(from - source),
                        static_cast<std::size_t>(to - target)};
            }
        }
    }
    return {static_cast<std::size_t>(from - source), static_cast<std::size_t>(to - target)};
}

}  // namespace

UtfRun ConvertUtfRun(const char* source, std::size_t length, char16_t* target,
                     std::size_t capacity) noexcept {
    return Convert<4, 1, kBlock>(source, length, target, capacity);
}

UtfRun ConvertUtfRun(const char16_t* source, std::size_t length, char* target,
                     std::size_t capacity) noexcept {
    return Convert<2, 3, 4 * kBlock>(source, length, target, capacity);
}

std::size_t ConvertAsciiRun(const char* source, std::size_t length, char16_t* target) noexcept {
    std::size_t done = 0;
    while (length - done >= std::size_t{kBlock} &&
           ConvertAsciiBlock(source + done, target + done)) {
        done += kBlock;
    }
    for (; done < length && static_cast<u8>(source[done]) < 0x80; ++done) {
        target[done] = static_cast<char16_t>(source[done]);
    }
    return done;
}

}  // namespace platform

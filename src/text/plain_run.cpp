#include "text/plain_run.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstring>

#include "platform/types.h"

namespace {

// Units that are looked at together.
constexpr std::size_t kBlock = 16;

constexpr u64 NonAsciiBits(char) {
    return 0x8080808080808080;
}
constexpr u64 NonAsciiBits(char16_t) {
    return 0xFF80FF80FF80FF80;
}

template <typename Unit>
bool IsAscii(Unit unit) noexcept {
    return (static_cast<u64>(static_cast<char16_t>(unit)) & NonAsciiBits(Unit{}) & 0xFFFF) == 0;
}

template <typename Unit>
bool IsAsciiBlock(const Unit* units) noexcept {
    u64 all = 0;
    for (std::size_t offset = 0; offset < kBlock; offset += sizeof all / sizeof(Unit)) {
        u64 word;
        std::memcpy(&word, units + offset, sizeof word);
        all |= word;
    }
    return (all & NonAsciiBits(Unit{})) == 0;
}

template <typename Source, typename Target>
void CopyBlock(const Source* source, Target* target) noexcept {
    for (std::size_t index = 0; index < kBlock; ++index) {
        target[index] = static_cast<Target>(source[index]);
    }
}

template <typename Source, typename Target>
std::size_t CopyAscii(const Source* source, std::size_t length, Target* target) noexcept {
    std::size_t done = 0;
    while (length - done >= kBlock && IsAsciiBlock(source + done)) {
        CopyBlock(source + done, target + done);
        done += kBlock;
    }
    while (done < length && IsAscii(source[done])) {
        target[done] = static_cast<Target>(source[done]);
        ++done;
    }
    return done;
}

// Converts the character at the start of the text. Nothing is read if it is ill-formed or does not
// fit.
PlainRun ConvertCharacter(const char* source, std::size_t length, char16_t* target,
                          std::size_t capacity) noexcept {
    std::size_t read = 0;
    UChar32 character;
    U8_NEXT(source, read, length, character);
    if (character < 0 || static_cast<std::size_t>(U16_LENGTH(character)) > capacity) {
        return {0, 0};
    }
    std::size_t written = 0;
    U16_APPEND_UNSAFE(target, written, character);
    return {read, written};
}

PlainRun ConvertCharacter(const char16_t* source, std::size_t length, char* target,
                          std::size_t capacity) noexcept {
    std::size_t read = 0;
    UChar32 character;
    U16_NEXT(source, read, length, character);
    if (U_IS_SURROGATE(character) || static_cast<std::size_t>(U8_LENGTH(character)) > capacity) {
        return {0, 0};
    }
    std::size_t written = 0;
    U8_APPEND_UNSAFE(target, written, character);
    return {read, written};
}

template <typename Source, typename Target>
PlainRun ConvertRun(const Source* source, std::size_t length, Target* target,
                    std::size_t capacity) noexcept {
    PlainRun run = {0, 0};
    while (run.read < length) {
        if (IsAscii(source[run.read])) {
            const std::size_t room = std::min(length - run.read, capacity - run.written);
            const std::size_t ascii = CopyAscii(source + run.read, room, target + run.written);
            run = {run.read + ascii, run.written + ascii};
            if (ascii == room) {
                break;
            }
        }
        const PlainRun one = ConvertCharacter(source + run.read, length - run.read,
                                              target + run.written, capacity - run.written);
        if (one.read == 0) {
            break;
        }
        run = {run.read + one.read, run.written + one.written};
    }
    return run;
}

}  // namespace

PlainRun ConvertPlainRun(const char* source, std::size_t length, char16_t* target,
                         std::size_t capacity) noexcept {
    return ConvertRun(source, length, target, capacity);
}

PlainRun ConvertPlainRun(const char16_t* source, std::size_t length, char* target,
                         std::size_t capacity) noexcept {
    return ConvertRun(source, length, target, capacity);
}

std::size_t ConvertAsciiRun(const char* source, std::size_t length, char16_t* target) noexcept {
    return CopyAscii(source, length, target);
}

std::size_t AsciiRunLength(const char* text, std::size_t length) noexcept {
    std::size_t done = 0;
    while (length - done >= kBlock && IsAsciiBlock(text + done)) {
        done += kBlock;
    }
    return static_cast<std::size_t>(
        std::find_if_not(text + done, text + length, IsAscii<char>) - text);
}

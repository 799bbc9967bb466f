#include "platform/multibyte.h"

#include <cerrno>

#include <algorithm>
#include <cstring>
#include <string>

#include "platform/common/utf_run.h"
#include "platform/errors.h"
#include "utf8.h"

namespace platform {
namespace {

constexpr std::size_t kIllFormedText = SIZE_MAX;

// How a form of text is read, and how the other form is written.
struct FromNarrow {
    using Source = char;
    using Target = char16_t;
    static utf::Decoded Read(const char* text, u64 available) {
        return utf::DecodeUtf8(text, available);
    }
    static utf::Encoded<char16_t> Write(char32_t character) { return utf::EncodeUtf16(character); }
    // No byte becomes more than one unit.
    static std::size_t SureLength(const char* text, std::size_t room) {
        return strnlen(text, room);
    }
};

struct FromWide {
    using Source = char16_t;
    using Target = char;
    static utf::Decoded Read(const char16_t* text, u64 available) {
        return utf::DecodeUtf16(text, available);
    }
    static utf::Encoded<char> Write(char32_t character) { return utf::EncodeUtf8(character); }
    // No unit becomes more than three bytes.
    static std::size_t SureLength(const char16_t* text, std::size_t room) {
        const char16_t* const end = std::char_traits<char16_t>::find(text, room / 3, u'\0');
        return end != nullptr ? static_cast<std::size_t>(end - text) : room / 3;
    }
};

// The start of terminated text. Of text that the room may end before its terminator, only so much
// is looked at as is sure to be needed.
template <typename Form>
UtfRun ConvertStart(typename Form::Target* target, const typename Form::Source* source,
                    std::size_t room) noexcept {
    UtfRun whole = {0, 0};
    for (UtfRun run = {1, 0}; run.read != 0;) {
        const std::size_t left = room - whole.written;
        run = ConvertUtfRun(source + whole.read, Form::SureLength(source + whole.read, left),
                            target + whole.written, left);
        whole = {whole.read + run.read, whole.written + run.written};
    }
    return whole;
}

template <typename Form>
std::size_t ConvertTerminated(typename Form::Target* target, const typename Form::Source* source,
                              std::size_t limit) noexcept {
    const std::size_t room = target != nullptr ? limit : SIZE_MAX;
    const UtfRun start =
        target != nullptr ? ConvertStart<Form>(target, source, room) : UtfRun{0, 0};
    std::size_t written = start.written;
    source += start.read;
    while (written < room) {
        const utf::Decoded read = Form::Read(source, UINT64_MAX);
        if (read.character == utf::kIllFormed) {
            errno = EILSEQ;
            return kIllFormedText;
        }
        const auto encoded = Form::Write(read.character);
        if (encoded.length > room - written) {
            break;
        }
        if (target != nullptr) {
            std::copy_n(encoded.units, encoded.length, target + written);
        }
        if (read.character == 0) {
            break;
        }
        written += encoded.length;
        source += read.units;
    }
    return written;
}

template <typename Form>
i32 ConvertCounted(const typename Form::Source* source, i32 length, typename Form::Target* target,
                   i32 capacity) noexcept {
    const auto end = static_cast<u64>(length);
    const UtfRun start = ConvertUtfRun(source, end, target, static_cast<std::size_t>(capacity));
    i64 written = static_cast<i64>(start.written);
    for (u64 position = start.read; position < end;) {
        const utf::Decoded read = Form::Read(source + position, end - position);
        const auto encoded =
            Form::Write(read.character != utf::kIllFormed ? read.character : utf::kReplacement);
        if (capacity != 0) {
            if (static_cast<i64>(encoded.length) > capacity - written) {
                SetLastError(kErrorInsufficientBuffer);
                return 0;
            }
            std::copy_n(encoded.units, encoded.length, target + written);
        }
        written += encoded.length;
        position += read.units;
    }
    if (written > INT32_MAX) {
        SetLastError(kErrorInsufficientBuffer);
        return 0;
    }
    return static_cast<i32>(written);
}

}  // namespace

std::size_t mbstowcs(char16_t* target, const char* source, std::size_t limit) noexcept {
    return ConvertTerminated<FromNarrow>(target, source, limit);
}

std::size_t wcstombs(char* target, const char16_t* source, std::size_t limit) noexcept {
    return ConvertTerminated<FromWide>(target, source, limit);
}

i32 MultiByteToWideChar(const char* source, i32 length, char16_t* target, i32 capacity) noexcept {
    return ConvertCounted<FromNarrow>(source, length, target, capacity);
}

i32 WideCharToMultiByte(const char16_t* source, i32 length, char* target, i32 capacity) noexcept {
    return ConvertCounted<FromWide>(source, length, target, capacity);
}

}  // namespace platform

#include "platform/multibyte.h"

#include <cerrno>

#include <algorithm>

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
};

struct FromWide {
    using Source = char16_t;
    using Target = char;
    static utf::Decoded Read(const char16_t* text, u64 available) {
        return utf::DecodeUtf16(text, available);
    }
    static utf::Encoded<char> Write(char32_t character) { return utf::EncodeUtf8(character); }
};

template <typename Form>
std::size_t ConvertTerminated(typename Form::Target* target, const typename Form::Source* source,
                              std::size_t limit) noexcept {
    const std::size_t room = target != nullptr ? limit : SIZE_MAX;
    std::size_t written = 0;
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
    i64 written = 0;
    for (u64 position = 0; position < end;) {
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

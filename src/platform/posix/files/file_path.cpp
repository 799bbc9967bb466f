#include "file_path.h"

#include <algorithm>

#include "../utf8.h"
#include "platform/errors.h"

namespace platform {
namespace {

constexpr char16_t kCarrier = 0xDC00;
constexpr char16_t kCarriedBackslash = kCarrier + '\\';
constexpr char16_t kFirstCarriedByte = kCarrier + 0x80;
constexpr char16_t kLastCarriedByte = kCarrier + 0xFF;

// What a unit of its own stands for, or -1.
int CarriedByte(char16_t unit) noexcept {
    const bool isByte =
        unit == kCarriedBackslash || (unit >= kFirstCarriedByte && unit <= kLastCarriedByte);
    return isByte ? unit - kCarrier : -1;
}

}  // namespace

FilePath::FilePath(const char16_t* path) noexcept : m_error(Convert(path)) {
    if (m_error != 0) {
        SetLastError(m_error);
    }
}

u32 FilePath::Convert(const char16_t* path) noexcept {
    std::size_t length = 0;
    while (*path != 0) {
        if (length + 4 >= kLimit) {
            return kErrorFilenameExceedsRange;
        }
        const utf::Decoded read = utf::DecodeUtf16(path, UINT64_MAX);
        if (read.character == utf::kIllFormed) {
            const int byte = CarriedByte(*path);
            if (byte < 0) {
                return kErrorInvalidName;
            }
            m_text[length++] = static_cast<char>(byte);
        } else if (read.character == u'\\') {
            m_text[length++] = '/';
        } else {
            const auto encoded = utf::EncodeUtf8(read.character);
            std::copy_n(encoded.units, encoded.length, m_text + length);
            length += encoded.length;
        }
        path += read.units;
    }
    m_text[length] = '\0';
    return kErrorSuccess;
}

bool AppendBytes(std::u16string_view text, std::string& bytes) {
    while (!text.empty()) {
        const utf::Decoded read = utf::DecodeUtf16(text.data(), text.size());
        if (read.character != utf::kIllFormed) {
            const auto encoded = utf::EncodeUtf8(read.character);
            bytes.append(encoded.units, encoded.length);
        } else if (const int byte = CarriedByte(text.front()); byte >= 0) {
            bytes += static_cast<char>(byte);
        } else {
            return false;
        }
        text.remove_prefix(read.units);
    }
    return true;
}

std::size_t UnitsOfPath(const char* bytes, std::size_t length, char16_t* units) noexcept {
    std::size_t written = 0;
    for (std::size_t i = 0; i < length;) {
        if (static_cast<u8>(bytes[i]) < 0x80 && bytes[i] != '\\') {
            units[written++] = static_cast<char16_t>(bytes[i++]);
            continue;
        }
        const utf::Decoded read = utf::DecodeUtf8(bytes + i, length - i);
        const bool isCarried = read.character == utf::kIllFormed || read.character == '\\';
        if (isCarried) {
            units[written++] = static_cast<char16_t>(kCarrier + static_cast<u8>(bytes[i]));
            ++i;
            continue;
        }
        const auto encoded = utf::EncodeUtf16(read.character);
        written = static_cast<std::size_t>(
            std::copy_n(encoded.units, encoded.length, units + written) - units);
        i += read.units;
    }
    return written;
}

}  // namespace platform

// Names and values are UTF-8 in the process's environment and compare with case. A byte that is no
// part of well-formed UTF-8 reads as U+FFFD.
#include "platform/environment.h"

#include <cstdlib>
#include <new>
#include <string>
#include <string_view>

#include "platform/errors.h"

namespace platform {
namespace {

constexpr char16_t kReplacement = 0xFFFD;

void AppendUtf8(std::string& text, char32_t point) {
    if (point < 0x80) {
        text += static_cast<char>(point);
        return;
    }
    const int trailing = point < 0x800 ? 1 : point < 0x10000 ? 2 : 3;
    const u32 lead = 0xF0u << (3 - trailing) & 0xFFu;
    text += static_cast<char>(lead | point >> 6 * trailing);
    for (int shift = 6 * (trailing - 1); shift >= 0; shift -= 6) {
        text += static_cast<char>(0x80u | (point >> shift & 0x3Fu));
    }
}

// False for text with a lone surrogate: it names no variable.
bool ToUtf8(std::u16string_view text, std::string& out) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t point = text[i];
        if (point >= 0xD800 && point < 0xE000) {
            const char32_t low = i + 1 < text.size() ? text[i + 1] : 0;
            if (point >= 0xDC00 || low < 0xDC00 || low > 0xDFFF) {
                return false;
            }
            point = 0x10000 + ((point - 0xD800) << 10) + (low - 0xDC00);
            ++i;
        }
        AppendUtf8(out, point);
    }
    return true;
}

// What a lead byte says: how many bytes follow, its own bits, and the least value of that length.
struct Utf8Lead {
    int trailing;
    char32_t bits;
    char32_t least;
};

bool ReadLead(u8 byte, Utf8Lead& lead) {
    if (byte >= 0xC2 && byte < 0xE0) {
        lead = {1, byte & 0x1Fu, 0x80};
    } else if (byte >= 0xE0 && byte < 0xF0) {
        lead = {2, byte & 0x0Fu, 0x800};
    } else if (byte >= 0xF0 && byte < 0xF5) {
        lead = {3, byte & 0x07u, 0x10000};
    } else {
        return false;
    }
    return true;
}

// Takes one character off the front; U+FFFD and one byte where it is ill-formed.
char32_t TakeCharacter(std::string_view& text) {
    const u8 first = static_cast<u8>(text.front());
    text.remove_prefix(1);
    if (first < 0x80) {
        return first;
    }
    Utf8Lead lead;
    if (!ReadLead(first, lead) || text.size() < static_cast<std::size_t>(lead.trailing)) {
        return kReplacement;
    }
    char32_t point = lead.bits;
    for (int i = 0; i < lead.trailing; ++i) {
        const u8 byte = static_cast<u8>(text[static_cast<std::size_t>(i)]);
        if ((byte & 0xC0) != 0x80) {
            return kReplacement;
        }
        point = point << 6 | (byte & 0x3Fu);
    }
    if (point < lead.least || point > 0x10FFFF || (point >= 0xD800 && point < 0xE000)) {
        return kReplacement;
    }
    text.remove_prefix(static_cast<std::size_t>(lead.trailing));
    return point;
}

void AppendUtf16(std::u16string& out, std::string_view text) {
    while (!text.empty()) {
        const char32_t point = TakeCharacter(text);
        if (point < 0x10000) {
            out += static_cast<char16_t>(point);
        } else {
            out += static_cast<char16_t>(0xD7C0 + (point >> 10));
            out += static_cast<char16_t>(0xDC00 + (point & 0x3FF));
        }
    }
}

const char* FindVariable(std::u16string_view name) {
    std::string narrow;
    return !name.empty() && ToUtf8(name, narrow) ? std::getenv(narrow.c_str()) : nullptr;
}

std::u16string Expand(std::u16string_view source) {
    std::u16string out;
    for (;;) {
        const std::size_t open = source.find(u'%');
        out += source.substr(0, open);
        if (open == source.npos) {
            return out;
        }
        source.remove_prefix(open);
        const std::size_t close = source.find(u'%', 1);
        if (close == source.npos) {
            return out.append(source);
        }
        if (const char* value = FindVariable(source.substr(1, close - 1))) {
            AppendUtf16(out, value);
            source.remove_prefix(close + 1);
        } else {
            out += source.substr(0, close);
            source.remove_prefix(close);
        }
    }
}

}  // namespace

u32 ExpandEnvironmentStringsW(const char16_t* source, char16_t* target, u32 capacity) noexcept {
    const ErrnoKeeper keeper;
    if (source == nullptr) {
        SetLastError(kErrorInvalidParameter);
        return 0;
    }
    try {
        const std::u16string text = Expand(source);
        const std::size_t needed = text.size() + 1;
        if (needed <= capacity) {
            text.copy(target, text.size());
            target[text.size()] = 0;
        }
        return static_cast<u32>(needed);
    } catch (const std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
        return 0;
    }
}

}  // namespace platform

#include "value.h"

#include <qxcore/registry.h>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <vector>

#include "failure.h"
#include "text.h"

namespace {

struct TypeRow {
    uint32_t m_native;
    const char* m_name;
    const char* m_editorName;
    std::optional<uint32_t> m_written;
};

constexpr TypeRow kTypes[] = {
    {kNativeString, "string", "REG_SZ", QX_REG_STRING},
    {kNativeExpand, "expand", "REG_EXPAND_SZ", QX_REG_EXPAND_STRING},
    {kNativeMulti, "multi", "REG_MULTI_SZ", QX_REG_MULTI_STRING},
    {kNativeDword, "dword", "REG_DWORD", QX_REG_DWORD},
    {kNativeBinary, "binary", "REG_BINARY", QX_REG_BINARY},
    {kNativeQword, "qword", "REG_QWORD", std::nullopt},
    {kNativeNone, "none", "REG_NONE", std::nullopt},
};

const TypeRow* FindType(uint32_t native) {
    const auto* const row = std::find_if(std::begin(kTypes), std::end(kTypes),
                                         [&](const auto& each) { return each.m_native == native; });
    return row != std::end(kTypes) ? row : nullptr;
}

uint32_t ParseType(std::string_view word) {
    for (const TypeRow& row : kTypes) {
        if (IsSameWord(word, row.m_name) || IsSameWord(word, row.m_editorName)) {
            return row.m_native;
        }
    }
    throw WrongUse("'" + std::string(word) +
                   "' is no type: string, expand, multi, dword or binary");
}

std::u16string ParseText(std::string_view word) {
    if (auto text = WideOf(word)) {
        return *std::move(text);
    }
    throw WrongUse("'" + std::string(word) + "' is not UTF-8");
}

bool IsNumber(uint32_t type, std::size_t size) {
    return (type == kNativeDword && size == 4) || (type == kNativeQword && size == 8);
}

bool IsText(uint32_t type, std::size_t size) {
    return (type == kNativeString || type == kNativeExpand || type == kNativeMulti) &&
           size % 2 == 0;
}

std::string DwordBytes(std::string_view word) {
    const bool isHexadecimal = word.starts_with("0x") || word.starts_with("0X");
    const std::string_view digits = word.substr(isHexadecimal ? 2 : 0);
    uint32_t number = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), number,
                                      isHexadecimal ? 16 : 10);
    if (read.ec != std::errc() || read.ptr != digits.data() + digits.size()) {
        throw WrongUse("'" + std::string(word) + "' is no number from 0 to 4294967295");
    }
    std::string bytes(sizeof number, '\0');
    std::memcpy(bytes.data(), &number, sizeof number);
    return bytes;
}

std::string BinaryBytes(std::string_view word) {
    std::string bytes;
    for (; word.size() >= 2; word.remove_prefix(2)) {
        unsigned char byte = 0;
        const auto read = std::from_chars(word.data(), word.data() + 2, byte, 16);
        if (read.ec != std::errc() || read.ptr != word.data() + 2) {
            break;
        }
        bytes += static_cast<char>(byte);
    }
    if (!word.empty()) {
        throw WrongUse("binary data are pairs of hexadecimal digits, such as 00ff7f");
    }
    return bytes;
}

// Texts in a row, and an empty one at the end. An empty one before would end the row.
std::string MultiBytes(std::span<char* const> words) {
    std::u16string texts;
    for (const char* const word : words) {
        if (*word == 0) {
            throw WrongUse("a text of several cannot be empty");
        }
        texts += ParseText(word) + u'\0';
    }
    return BytesOf(texts + u'\0');
}

std::string ParseData(uint32_t type, std::span<char* const> words) {
    if (type == kNativeMulti) {
        return MultiBytes(words);
    }
    if (words.size() != 1) {
        throw WrongUse("only a value of the type multi has more or less than one DATA");
    }
    switch (type) {
        case kNativeDword:
            return DwordBytes(words[0]);
        case kNativeBinary:
            return BinaryBytes(words[0]);
        default:
            return BytesOf(ParseText(words[0]) + u'\0');
    }
}

uint64_t NumberOf(std::string_view bytes) {
    uint64_t number = 0;
    std::memcpy(&number, bytes.data(), bytes.size());
    return number;
}

std::string Digits(std::string_view bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    for (const unsigned char byte : bytes) {
        digits += {kDigits[byte >> 4], kDigits[byte & 15]};
    }
    return digits;
}

// Without the terminators that stand at the end of whole text.
std::u16string TextWithin(const Value& value) {
    std::u16string text = TextOf(value.m_bytes);
    const int terminators = value.m_type == kNativeMulti ? 2 : 1;
    for (int i = 0; i < terminators && text.ends_with(u'\0'); ++i) {
        text.pop_back();
    }
    return text;
}

// The texts of a value: one, or several.
std::vector<std::u16string> TextsOf(const Value& value) {
    std::vector<std::u16string> texts(1);
    for (const char16_t unit : TextWithin(value)) {
        if (unit == 0 && value.m_type == kNativeMulti) {
            texts.emplace_back();
        } else {
            texts.back() += unit;
        }
    }
    return texts;
}

template <typename Show>
std::string Data(const Value& value, std::string_view separator, Show show) {
    if (IsNumber(value.m_type, value.m_bytes.size())) {
        return std::to_string(NumberOf(value.m_bytes));
    }
    if (!IsText(value.m_type, value.m_bytes.size())) {
        return Digits(value.m_bytes);
    }
    std::string shown;
    for (const std::u16string& text : TextsOf(value)) {
        shown += show(text);
        shown += separator;
    }
    shown.resize(shown.size() - separator.size());
    return shown;
}

}  // namespace

std::string BytesOf(std::u16string_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(char16_t)};
}

std::u16string TextOf(std::string_view bytes) {
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
    return text;
}

std::string TypeName(uint32_t native) {
    const TypeRow* const row = FindType(native);
    return row != nullptr ? row->m_name : "type-" + std::to_string(native);
}

std::optional<uint32_t> WrittenType(uint32_t native) {
    const TypeRow* const row = FindType(native);
    return row != nullptr ? row->m_written : std::nullopt;
}

Value MakeValue(std::string_view name, std::string_view type, std::span<char* const> words) {
    const uint32_t native = ParseType(type);
    if (!WrittenType(native)) {
        throw Failure("a value of the type " + TypeName(native) + " can be read, but not written");
    }
    return {ParseText(name), native, ParseData(native, words)};
}

std::string ShownData(const Value& value, std::string_view separator, bool isExact) {
    return Data(value, separator, [&](const auto& text) { return Shown(text, isExact); });
}

std::string PrintedData(const Value& value) {
    return Data(value, "\n",
                [](const auto& text) {
                    const auto utf8 = Utf8Of(text);
                    return utf8 ? *utf8 : Shown(text, false);
                }) +
           "\n";
}

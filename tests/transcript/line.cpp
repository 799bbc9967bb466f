#include "transcript/line.h"

#include <qxcore/base.h>

#include <cstdio>

namespace {

std::string HexDigits(uint64_t number, size_t digits) {
    std::string text;
    for (size_t digit = digits; digit-- > 0;) {
        text += "0123456789ABCDEF"[(number >> (4 * digit)) & 0xF];
    }
    return text;
}

// What is not printable stands as a number of the unit's width.
template <typename Unit>
std::string Escaped(std::basic_string_view<Unit> text) {
    std::string escaped = "\"";
    for (const Unit unit : text) {
        const auto value = static_cast<std::make_unsigned_t<Unit>>(unit);
        const bool plain = value >= ' ' && value < 0x7F && value != '"';
        escaped += value == '\\' ? "\\\\"
                   : plain       ? std::string(1, static_cast<char>(value))
                                 : '\\' + HexDigits(value, 2 * sizeof value);
    }
    return escaped + '"';
}

}  // namespace

Line::Line(std::string_view head) {
    std::fwrite(head.data(), 1, head.size(), stdout);
    std::fflush(stdout);
}

Line::~Line() {
    m_text += '\n';
    std::fwrite(m_text.data(), 1, m_text.size(), stdout);
    std::fflush(stdout);
}

Line& Line::Pair(std::string_view what, std::string_view value) {
    m_text += ' ';
    m_text += what;
    m_text += what.ends_with("->") ? ' ' : '=';
    m_text += value;
    return *this;
}

Line& Line::Add(std::string_view what, std::string_view text) {
    return Pair(what, Escaped(text));
}

Line& Line::Add(std::string_view what, std::u16string_view text) {
    return Pair(what, Escaped(text));
}

Line& Line::Add(std::string_view what, std::u32string_view text) {
    return Pair(what, Escaped(text));
}

Line& Line::Hex(std::string_view what, uint64_t number) {
    return Pair(what, "0x" + HexDigits(number, number > 0xFFFFFFFF ? 16 : 8));
}

Line& Line::Bytes(std::string_view what, const void* bytes, size_t size) {
    std::string digits;
    for (size_t index = 0; index < size; ++index) {
        digits += HexDigits(static_cast<const unsigned char*>(bytes)[index], 2);
    }
    return Pair(what, digits + ":" + std::to_string(size));
}

Line& Line::Handle(std::string_view what, const void* handle) {
    return Pair(what, handle == nullptr             ? "null"
                      : handle == QX_INVALID_HANDLE ? "invalid"
                                                    : "valid");
}

// One line of the transcript: a call, what was handed to it and what it gave. No address is ever
// printed: a pointer appears as its distance from where it points into.
#ifndef TESTS_TRANSCRIPT_LINE_H
#define TESTS_TRANSCRIPT_LINE_H

#include <qxcore/base.h>

#include <bit>
#include <concepts>
#include <cstdio>
#include <string>
#include <string_view>

class Line {
  public:
    // The head goes out at once, so that a call that ends the process is seen.
    explicit Line(std::string_view head) { Write(head); }
    ~Line() { Write(m_text + '\n'); }
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    template <std::integral Number>
    Line& Add(std::string_view what, Number number) {
        return Pair(what, std::to_string(number));
    }
    Line& Add(std::string_view what, double number) {
        return Hex(what, std::bit_cast<uint64_t>(number));
    }
    Line& Add(std::string_view what, std::string_view text) { return Pair(what, Escaped(text)); }
    Line& Add(std::string_view what, std::u16string_view text) { return Pair(what, Escaped(text)); }
    Line& Add(std::string_view what, std::u32string_view text) { return Pair(what, Escaped(text)); }

    Line& Hex(std::string_view what, uint64_t number) {
        return Pair(what, "0x" + HexDigits(number, number > 0xFFFFFFFF ? 16 : 8));
    }
    Line& Result(QXResult result) { return Hex("->", static_cast<uint32_t>(result)); }
    Line& Bytes(std::string_view what, const void* bytes, size_t size) {
        std::string digits;
        for (size_t index = 0; index < size; ++index) {
            digits += HexDigits(static_cast<const unsigned char*>(bytes)[index], 2);
        }
        return Pair(what, digits + ":" + std::to_string(size));
    }
    template <typename Unit>
    Line& Place(std::string_view what, const Unit* place, const Unit* begin) {
        return place == nullptr ? Pair(what, "null") : Add(what, place - begin);
    }
    Line& Handle(std::string_view what, const void* handle) {
        return Pair(what, handle == nullptr             ? "null"
                          : handle == QX_INVALID_HANDLE ? "invalid"
                                                        : "valid");
    }

  private:
    static void Write(std::string_view text) {
        std::fwrite(text.data(), 1, text.size(), stdout);
        std::fflush(stdout);
    }
    static std::string HexDigits(uint64_t number, size_t digits) {
        std::string text;
        for (size_t digit = digits; digit-- > 0;) {
            text += "0123456789ABCDEF"[(number >> (4 * digit)) & 0xF];
        }
        return text;
    }

    // What is not printable stands as a number of the unit's width.
    template <typename Unit>
    static std::string Escaped(std::basic_string_view<Unit> text) {
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

    Line& Pair(std::string_view what, std::string_view value) {
        m_text.append(" ").append(what).append(what.ends_with("->") ? " " : "=").append(value);
        return *this;
    }

    std::string m_text;
};

#endif

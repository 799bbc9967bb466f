// One line of the transcript: a call, what was handed to it and what it gave. No address is ever
// printed: a pointer appears as its distance from where it points into.
#ifndef TESTS_TRANSCRIPT_LINE_H
#define TESTS_TRANSCRIPT_LINE_H

#include <qxcore/result.h>

#include <bit>
#include <concepts>
#include <string>
#include <string_view>

class Line {
  public:
    // The head goes out at once, so that a call that ends the process is seen.
    explicit Line(std::string_view head);
    ~Line();
    Line(const Line&) = delete;
    Line& operator=(const Line&) = delete;

    template <std::integral Number>
    Line& Add(std::string_view what, Number number) {
        return Pair(what, std::to_string(number));
    }
    Line& Add(std::string_view what, double number) {
        return Hex(what, std::bit_cast<uint64_t>(number));
    }
    Line& Add(std::string_view what, std::string_view text);
    Line& Add(std::string_view what, std::u16string_view text);
    Line& Add(std::string_view what, std::u32string_view text);
    Line& Add(std::string_view what, const char* text) { return Add(what, std::string_view(text)); }

    Line& Hex(std::string_view what, uint64_t number);
    Line& Bytes(std::string_view what, const void* bytes, size_t size);
    Line& Result(QXResult result) { return Hex("->", static_cast<uint32_t>(result)); }

    // Negative, 0 or positive, where a function promises no more than that.
    Line& Sign(std::string_view what, int number) { return Add(what, (number > 0) - (number < 0)); }

    template <typename Unit>
    Line& Place(std::string_view what, const Unit* place, const Unit* begin) {
        return place == nullptr ? Pair(what, "null") : Add(what, place - begin);
    }
    Line& Handle(std::string_view what, const void* handle);

  private:
    Line& Pair(std::string_view what, std::string_view value);

    std::string m_text;
};

#endif

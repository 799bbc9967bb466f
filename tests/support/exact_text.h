// Text in a heap block of exactly its size, so that the address sanitizer sees a step outside.
#ifndef QX_TESTS_SUPPORT_EXACT_TEXT_H
#define QX_TESTS_SUPPORT_EXACT_TEXT_H

#include <cstddef>
#include <string_view>
#include <vector>

// The units as they are, without a terminator of their own.
template <typename Unit>
std::vector<Unit> ExactUnits(std::basic_string_view<Unit> units) {
    return std::vector<Unit>(units.begin(), units.end());
}

// The same with a terminator.
template <typename Unit>
std::vector<Unit> ExactText(std::basic_string_view<Unit> units) {
    std::vector<Unit> text(units.size() + 1);
    units.copy(text.data(), units.size());
    return text;
}

inline std::vector<char> ExactText(const char* text) {
    return ExactText(std::string_view(text));
}

inline std::vector<char16_t> ExactText(const char16_t* text) {
    return ExactText(std::u16string_view(text));
}

// ASCII text in wide units.
inline std::u16string Widen(std::string_view text) {
    return std::u16string(text.begin(), text.end());
}

#endif

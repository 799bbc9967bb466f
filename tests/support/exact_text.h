// Text in a heap block of exactly its size, so that the address sanitizer sees a step outside.
#ifndef QX_TESTS_SUPPORT_EXACT_TEXT_H
#define QX_TESTS_SUPPORT_EXACT_TEXT_H

#include <string>
#include <string_view>
#include <vector>

// The units as they are, without a terminator of their own.
template <typename Unit>
std::vector<Unit> ExactUnits(const std::basic_string<Unit>& units) {
    return std::vector<Unit>(units.begin(), units.end());
}

// The same with a terminator.
template <typename Unit>
std::vector<Unit> ExactText(const std::basic_string<Unit>& units) {
    return std::vector<Unit>(units.c_str(), units.c_str() + units.size() + 1);
}

// Each byte as a wide unit.
inline std::u16string Widen(std::string_view text) {
    std::u16string wide;
    for (const char unit : text) {
        wide += static_cast<unsigned char>(unit);
    }
    return wide;
}

#endif

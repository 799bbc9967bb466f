// Text in a heap block of exactly its size, so that the address sanitizer sees a step outside.
#ifndef QX_TESTS_SUPPORT_EXACT_TEXT_H
#define QX_TESTS_SUPPORT_EXACT_TEXT_H

#include <algorithm>
#include <memory>
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

// A block to be written to, filled with a unit that stands for "untouched"; or a copy of a text.
template <typename Unit>
class ExactBlock {
  public:
    static constexpr Unit kUntouched = 0x55;

    explicit ExactBlock(size_t size) : m_size(size), m_units(new Unit[size]) {
        std::fill_n(m_units.get(), size, kUntouched);
    }
    explicit ExactBlock(std::basic_string_view<Unit> text) : ExactBlock(text.size()) {
        std::copy(text.begin(), text.end(), m_units.get());
    }

    Unit* Begin() { return m_units.get(); }
    Unit* End() { return m_units.get() + m_size; }
    size_t Size() const { return m_size; }
    std::basic_string<Unit> Content() const { return {m_units.get(), m_size}; }

  private:
    size_t m_size;
    std::unique_ptr<Unit[]> m_units;
};

#endif

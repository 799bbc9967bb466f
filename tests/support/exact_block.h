// Text in a heap block of exactly its own size, so that a sanitizer sees an access beside it.
#ifndef TESTS_SUPPORT_EXACT_BLOCK_H
#define TESTS_SUPPORT_EXACT_BLOCK_H

#include <algorithm>
#include <memory>
#include <string>

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

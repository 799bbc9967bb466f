// Takes the values of a test case off a fuzzer's input.
#ifndef FUZZ_FUZZ_INPUT_H
#define FUZZ_FUZZ_INPUT_H

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

class FuzzInput {
  public:
    FuzzInput(const uint8_t* bytes, size_t size) : m_bytes(bytes), m_size(size) {}

    template <typename Number>
    Number Take() {
        Number number{};
        const size_t taken = m_size < sizeof number ? m_size : sizeof number;
        std::memcpy(&number, m_bytes, taken);
        m_bytes += taken;
        m_size -= taken;
        return number;
    }

    // The rest, in units.
    template <typename Unit>
    std::basic_string<Unit> Rest() const {
        std::basic_string<Unit> text(m_size / sizeof(Unit), Unit{});
        std::memcpy(text.data(), m_bytes, text.size() * sizeof(Unit));
        return text;
    }

  private:
    const uint8_t* m_bytes;
    size_t m_size;
};

#define FUZZ_REQUIRE(condition)                                                  \
    do {                                                                         \
        if (!(condition)) {                                                      \
            std::fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            std::abort();                                                        \
        }                                                                        \
    } while (false)

#endif

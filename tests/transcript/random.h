// A generator of our own: the standard library's distributions may differ between platforms.
#ifndef TESTS_TRANSCRIPT_RANDOM_H
#define TESTS_TRANSCRIPT_RANDOM_H

#include <cstddef>
#include <cstdint>

class Random {
  public:
    // Each step of a sequence has a stream of its own, so that it draws the same arguments whether
    // or not the steps before it are made.
    explicit Random(uint64_t seed, uint64_t step = 0) : m_state(seed) {
        m_state = Next() + step;
        Next();
    }

    // SplitMix64.
    uint64_t Next() {
        m_state += 0x9E3779B97F4A7C15;
        uint64_t mixed = m_state;
        mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9;
        mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EB;
        return mixed ^ (mixed >> 31);
    }

    // 0 to `limit` - 1.
    uint32_t Below(size_t limit) {
        return static_cast<uint32_t>(((Next() >> 32) * static_cast<uint64_t>(limit)) >> 32);
    }
    uint32_t Between(uint32_t first, uint32_t last) { return first + Below(last - first + 1); }
    bool OneIn(size_t n) { return Below(n) == 0; }

    template <typename Choices>
    const auto& Of(const Choices& choices) {
        return std::data(choices)[Below(std::size(choices))];
    }

  private:
    uint64_t m_state;
};

#endif

// What the loops of unit_scan_loops.h look for, and how far.
#ifndef QX_TEXT_UNIT_SCAN_CONDITIONS_H
#define QX_TEXT_UNIT_SCAN_CONDITIONS_H

#include "text/unit_scan.h"

namespace unit_scan {
namespace {

// How many units count.

struct NoLimit {
    bool Allows(std::size_t) const { return true; }
    std::size_t Cut(std::size_t index) const { return index; }
    std::size_t Behind(std::size_t) const { return kUnlimited; }
};

struct Limit {
    std::size_t m_units;

    bool Allows(std::size_t index) const { return index < m_units; }
    std::size_t Cut(std::size_t index) const { return index < m_units ? index : m_units; }
    std::size_t Behind(std::size_t index) const { return m_units - index; }
};

template <typename Unit>
Plain<Unit> PlainUnit(Unit unit) {
    return static_cast<Plain<Unit>>(unit);
}

// The tests take a unit or a block, one or two of them, and give a truth value, or a block whose
// lanes are all ones where the test holds.

struct IsEnd {
    template <typename Value>
    auto operator()(Value value) const {
        return value == Value{};
    }
};

struct IsEndOrUnit {
    u16 m_unit;

    template <typename Value>
    auto operator()(Value value) const {
        return (value == Value{}) | (value == m_unit);
    }
};

template <typename Unit>
struct IsEndOrNotAscii {
    template <typename Value>
    auto operator()(Value value) const {
        constexpr Plain<Unit> kOne = 1;
        constexpr Plain<Unit> kLast = 0x7E;
        return static_cast<Value>(value - kOne) > Value{} + kLast;
    }
};

// The tests of pairs hold as long as two texts go on alike.

struct Alike {
    template <typename Value>
    [[gnu::always_inline]] auto operator()(Value first, Value second) const {
        return (first == second) & (first != Value{});
    }
};

// Units that differ in the case bit alone are the same letter if one of them is a letter at all.
template <typename Unit>
struct AlikeButForCase {
    template <typename Value>
    [[gnu::always_inline]] auto operator()(Value first, Value second) const {
        return IsSame(first, second) & (first != Value{});
    }

    template <typename Value>
    [[gnu::always_inline]] static auto IsSame(Value first, Value second) {
        constexpr Plain<Unit> kCaseBit = 0x20;
        const auto lower = static_cast<Value>(first | kCaseBit);
        const auto ignored = FoldAscii<Unit, 'a'>::CaseBitIfLetter(lower);
        return static_cast<Value>((first ^ second) & ~ignored) == Value{};
    }
};

// Units that are the same, but for the case, are both ASCII if one is. As a signed number, it is
// greater than the terminator then.
struct AlikeButForCaseAndAscii {
    template <typename Value>
    [[gnu::always_inline]] auto operator()(Value first, Value second) const {
        const auto isSame = AlikeButForCase<char>::IsSame(first, second);
        const auto isAscii = AsSigned(first) > AsSigned(Value{});
        return isSame & isAscii;
    }
};

}  // namespace
}  // namespace unit_scan

#endif

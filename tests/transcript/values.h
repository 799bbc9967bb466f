// Arguments that calls draw, and buffers that show every unit written.
#ifndef TESTS_TRANSCRIPT_VALUES_H
#define TESTS_TRANSCRIPT_VALUES_H

#include <qxcore/base.h>

#include <algorithm>
#include <string>
#include <type_traits>
#include <vector>

#include "support/exact_text.h"
#include "transcript/line.h"
#include "transcript/random.h"

// Text without a zero unit: ASCII, well-formed and ill-formed text in all languages. Narrow text is
// UTF-8 where it is well formed.
std::string NarrowText(Random& random);
std::u16string WideText(Random& random);

// Text in ASCII.
std::string PlainText(Random& random);

// The same text, or one that differs from it in something small.
template <typename Unit>
std::basic_string<Unit> Variation(Random& random, std::basic_string<Unit> text) {
    Unit& unit = text[random.Below(text.size())];
    switch (text.empty() ? 0 : random.Below(6)) {
        case 0:
            text += static_cast<Unit>(random.Between('A', 'z'));
            break;
        case 1:
            text.pop_back();
            break;
        case 2:
            unit ^= 0x20;
            break;
        case 3:
            unit = static_cast<Unit>(random.Between(1, 0xFF));
            break;
        case 4:
            unit += static_cast<Unit>(1);
            break;
        default:
            break;
    }
    // A change may have made a terminator.
    return text.c_str();
}

// The text of a number in front of something else, or nearly one.
std::string NumberText(Random& random);

uint32_t AnyCodePoint(Random& random);

// A number from the ends of the range, or any.
template <typename Number>
Number AnyNumber(Random& random) {
    constexpr uint64_t kSignBit = uint64_t{1} << (8 * sizeof(Number) - 1);
    const uint64_t number = random.Next();
    switch (random.Below(4)) {
        case 0:
            return static_cast<Number>(number % 100);
        case 1:
            return static_cast<Number>(~(number % 3));
        case 2:
            return static_cast<Number>(kSignBit + number % 3 - 1);
        default:
            return static_cast<Number>(number);
    }
}

// Any code points and some other numbers.
std::u32string Utf32Text(Random& random);

template <typename Unit>
std::basic_string<Unit> Text(Random& random) {
    if constexpr (sizeof(Unit) == 1) {
        return NarrowText(random);
    } else if constexpr (sizeof(Unit) == 2) {
        return WideText(random);
    } else {
        return Utf32Text(random);
    }
}

// One of the parts of a text that a separator stands between.
template <typename Unit>
std::basic_string<Unit> AnyPart(Random& random, std::basic_string_view<Unit> parts,
                                std::type_identity_t<Unit> separator) {
    for (auto left = random.Below(1 + static_cast<size_t>(std::ranges::count(parts, separator)));
         left > 0; --left) {
        parts.remove_prefix(parts.find(separator) + 1);
    }
    return std::basic_string<Unit>(parts.substr(0, parts.find(separator)));
}

inline std::string AnyWord(Random& random, std::string_view words) {
    return AnyPart(random, words, ' ');
}

// Room for some units with a margin behind it. It shows all that was written. Without room it is a
// null pointer.
template <typename Unit>
class Buffer {
  public:
    static constexpr Unit kUntouched = '~';

    explicit Buffer(size_t size, const std::basic_string<Unit>& content = {})
        : m_units(size + kMargin, kUntouched) {
        std::copy(content.begin(), content.end(), m_units.begin());
    }
    Unit* Get() { return Size() != 0 ? m_units.data() : nullptr; }
    size_t Size() const { return m_units.size() - kMargin; }
    std::basic_string_view<Unit> Content() const {
        const std::basic_string_view<Unit> all(m_units.data(), m_units.size());
        return all.substr(0, all.find_last_not_of(kUntouched) + 1);
    }
    void Show(Line& line, const char* what) const { line.Add(what, Content()); }

  private:
    static constexpr size_t kMargin = 3;

    std::vector<Unit> m_units;
};

#endif

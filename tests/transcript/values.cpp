#include "transcript/values.h"

#include <filesystem>
#include <string_view>

namespace {

constexpr uint32_t kOddCodePoints[] = {
    0x7F,   0x80,   0x85,   0xA0,    0xAA,    0xB5,    0xC0,    0xC9,    0xD7,   0xDF,
    0xE9,   0xF7,   0xFF,   0x130,   0x131,   0x149,   0x17F,   0x1C4,   0x1C5,  0x1C6,
    0x1F0,  0x2000, 0x2028, 0x202F,  0x212A,  0x212B,  0x2160,  0x24B6,  0x3000, 0x3042,
    0x390,  0x3A3,  0x3C2,  0x3C3,   0x416,   0x436,   0x4E00,  0x587,   0x660,  0x966,
    0x10A0, 0x10D0, 0x1E9E, 0x1E96,  0x1F80,  0x2C00,  0xA640,  0xFB03,  0xFEFF, 0xFF10,
    0xFF21, 0xFFFD, 0xFFFF, 0x10000, 0x10400, 0x10428, 0x1F600, 0x10FFFF};

size_t AnyLength(Random& random) {
    return random.OneIn(12) ? random.Below(300) : random.Below(14);
}

template <typename Unit, typename Draw>
std::basic_string<Unit> Units(Random& random, Draw draw) {
    std::basic_string<Unit> text;
    for (size_t left = AnyLength(random); left > 0; --left) {
        text += static_cast<Unit>(draw());
    }
    return text;
}

template <typename Unit>
std::basic_string<Unit> FewLetters(Random& random) {
    return Units<Unit>(random, [&] { return random.Of(std::string_view("abAB_1, ")); });
}

template <typename Unit>
std::basic_string<Unit> AsciiText(Random& random) {
    return Units<Unit>(random, [&] { return random.Between(1, 0x7F); });
}

// Well-formed text, which a path knows in each encoding.
std::filesystem::path Characters(Random& random) {
    return Units<char32_t>(random, [&] {
        const uint32_t codePoint = AnyCodePoint(random);
        return codePoint >= 0xD800 && codePoint < 0xE000 ? '?' : codePoint;
    });
}

}  // namespace

uint32_t AnyCodePoint(Random& random) {
    switch (random.Below(4)) {
        case 0:
            return random.Between('A', 'z');
        case 1:
            return random.Of(kOddCodePoints);
        case 2:
            return random.Between(1, 0x24FF);
        default:
            return random.Between(1, 0x10FFFF);
    }
}

std::string PlainText(Random& random) {
    return random.OneIn(2) ? FewLetters<char>(random) : AsciiText<char>(random);
}

std::string NarrowText(Random& random) {
    switch (random.Below(4)) {
        case 0: {
            const std::u8string text = Characters(random).u8string();
            return {text.begin(), text.end()};
        }
        case 1:
            return Units<char>(random, [&] { return random.Between(1, 0xFF); });
        default:
            return PlainText(random);
    }
}

std::u16string WideText(Random& random) {
    switch (random.Below(4)) {
        case 0:
            return Characters(random).u16string();
        case 1:
            return Units<char16_t>(random, [&] {
                return random.OneIn(3) ? random.Between(0xD800, 0xDFFF) : random.Between(1, 0xFFFF);
            });
        case 2:
            return AsciiText<char16_t>(random);
        default:
            return FewLetters<char16_t>(random);
    }
}

std::u32string Utf32Text(Random& random) {
    const auto text = Units<char32_t>(random, [&] {
        return random.OneIn(10) ? static_cast<uint32_t>(random.Next()) : AnyCodePoint(random);
    });
    return text.c_str();
}

std::string NumberText(Random& random) {
    constexpr const char* kFronts[] = {"", "", "", " ", "\t\n\v\f\r ", "+", "-", " -", "+-", "- "};
    constexpr const char* kPrefixes[] = {"", "", "", "0", "0x", "0X", "0x0", "00"};
    constexpr const char* kTails[] = {"", "", "", " ", "x", "8", "9", "-1", ".5", "e9", "\x80"};
    std::string text = random.Of(kFronts);
    text += random.Of(kPrefixes);
    text += random.OneIn(2)
                ? AnyWord(random,
                          " 0 7 12 2147483647 2147483648 4294967295 4294967296 9223372036854775807 "
                          "9223372036854775808 18446744073709551615 18446744073709551616 "
                          "99999999999999999999999999 7fffffff 80000000 zz 1010 g")
                : std::to_string(random.Next() >> random.Below(64));
    return text + random.Of(kTails);
}

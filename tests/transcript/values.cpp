#include "transcript/values.h"

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

template <typename Draw>
std::u16string Units(Random& random, Draw draw) {
    std::u16string text;
    for (size_t left = AnyLength(random); left > 0; --left) {
        text += static_cast<char16_t>(draw());
    }
    return text;
}

std::u16string FewLetters(Random& random) {
    return Units(random, [&] { return random.Of(std::u16string_view(u"abAB_1, ")); });
}

std::u16string AsciiText(Random& random) {
    return Units(random, [&] { return random.Between(1, 0x7F); });
}

std::u16string AnyUnits(Random& random) {
    return Units(random, [&] {
        return random.OneIn(3) ? random.Between(0xD800, 0xDFFF) : random.Between(1, 0xFFFF);
    });
}

void Append(std::u16string* text, uint32_t codePoint) {
    if (codePoint >= 0x10000) {
        *text += static_cast<char16_t>((codePoint >> 10) + 0xD7C0);
        codePoint = 0xDC00 | (codePoint & 0x3FF);
    }
    *text += static_cast<char16_t>(codePoint);
}

void Append(std::string* text, uint32_t codePoint) {
    const auto append = [text](uint32_t byte) { *text += static_cast<char>(byte); };
    if (codePoint < 0x80) {
        append(codePoint);
        return;
    }
    const int trails = codePoint < 0x800 ? 1 : codePoint < 0x10000 ? 2 : 3;
    constexpr uint32_t kLeads[] = {0, 0xC0, 0xE0, 0xF0};
    append(kLeads[trails] | (codePoint >> (6 * trails)));
    for (int trail = trails; trail-- > 0;) {
        append(0x80 | ((codePoint >> (6 * trail)) & 0x3F));
    }
}

// Well-formed text.
template <typename Text>
Text Characters(Random& random) {
    Text text;
    for (size_t left = AnyLength(random); left > 0; --left) {
        const uint32_t codePoint = AnyCodePoint(random);
        Append(&text, codePoint >= 0xD800 && codePoint < 0xE000 ? '?' : codePoint);
    }
    return text;
}

std::string Narrow(const std::u16string& text) {
    return {text.begin(), text.end()};
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
    return Narrow(random.OneIn(2) ? FewLetters(random) : AsciiText(random));
}

std::string NarrowText(Random& random) {
    switch (random.Below(4)) {
        case 0:
            return Characters<std::string>(random);
        case 1:
            return Narrow(Units(random, [&] { return random.Between(1, 0xFF); }));
        default:
            return PlainText(random);
    }
}

std::u16string WideText(Random& random) {
    switch (random.Below(4)) {
        case 0:
            return Characters<std::u16string>(random);
        case 1:
            return AnyUnits(random);
        case 2:
            return AsciiText(random);
        default:
            return FewLetters(random);
    }
}

std::u32string Utf32Text(Random& random) {
    std::u32string text;
    for (size_t left = AnyLength(random); left > 0; --left) {
        text += random.OneIn(10) ? static_cast<char32_t>(random.Next())
                                 : static_cast<char32_t>(AnyCodePoint(random));
    }
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

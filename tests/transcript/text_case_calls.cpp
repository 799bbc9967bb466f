#include <qxcore/string.h>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

std::string AgreedCase(const std::string& text) {
    return allowance::NarrowCaseIsTheSystems(text);
}
std::u16string AgreedCase(const std::u16string& text) {
    return allowance::WideCaseIsTheRuntimes(text);
}

template <typename Unit>
Unit AnyUnit(Random& random) {
    const std::basic_string<Unit> text(1, static_cast<Unit>(AnyCodePoint(random)));
    return AgreedCase(text)[0];
}

MakeCall MapNarrow(int32_t (*map)(char)) {
    return [map](Random& random, Line& line) {
        const auto unit = AnyUnit<char>(random);
        line.Add("unit", static_cast<int32_t>(unit));
        line.Add("->", allowance::MappedUnitHasAnySign(map(unit)));
    };
}

MakeCall MapWide(uint32_t (*map)(wchar)) {
    return [map](Random& random, Line& line) {
        const auto unit = AnyUnit<wchar>(random);
        line.Hex("unit", unit).Hex("->", map(unit));
    };
}

template <typename Unit>
using CharacterOf = std::conditional_t<sizeof(Unit) == 1, char, wchar>;

// A class is a yes or a no.
template <typename Unit>
MakeCall Class(int32_t (*isInClass)(Unit)) {
    return [isInClass](Random& random, Line& line) {
        const auto unit = static_cast<Unit>(AnyUnit<CharacterOf<Unit>>(random));
        line.Add("unit", static_cast<int32_t>(unit)).Add("->", isInClass(unit) != 0);
    };
}

template <typename Unit>
MakeCall MapText(Unit* (*map)(Unit*)) {
    return [map](Random& random, Line& line) {
        const auto text = AgreedCase(Text<Unit>(random));
        Buffer<Unit> buffer(text.size() + 1, text + Unit{0});
        line.Add("text", text).Place("->", map(buffer.Begin()), buffer.Begin());
        line.Add("buffer", buffer.Content());
    };
}

// The mapping takes as many units again behind the text, and may need a terminator behind those.
MakeCall MapText16(wchar* (*map)(wchar*)) {
    return [map](Random& random, Line& line) {
        const std::u16string text = WideText(random);
        Buffer<wchar> buffer(2 * text.size() + 1, text + u'\0' + text + u'\0');
        buffer.Begin()[2 * text.size()] = 0;
        line.Add("text", text).Place("->", map(buffer.Begin()), buffer.Begin());
        line.Add("buffer", buffer.Content());
    };
}

constexpr uint32_t kAsciiUnits = 0x80;
constexpr uint32_t kNarrowUnits = 0x100;
constexpr uint32_t kWideUnits = 0x10000;

// A bit for each unit, 32 units a number.
void PrintClass(const char* name, const std::function<bool(uint32_t)>& isInClass, uint32_t units) {
    for (uint32_t begin = 0; begin < units; begin += 32) {
        uint32_t bits = 0;
        for (uint32_t bit = 0; bit < 32; ++bit) {
            const uint32_t unit = begin + bit;
            const bool shown = !allowance::WideClassIsTheRuntimes(unit);
            bits |= (shown && isInClass(unit) ? 1U : 0U) << bit;
        }
        Line(name).Hex("from", begin).Hex("units", bits);
    }
}

void PrintMapping(const char* name, const std::function<uint32_t(uint32_t)>& map, uint32_t units) {
    for (uint32_t unit = 0; unit < units; ++unit) {
        if (!allowance::WideClassIsTheRuntimes(unit) && map(unit) != unit) {
            Line(name).Hex("unit", unit).Hex("->", map(unit));
        }
    }
}

}  // namespace

std::vector<Call> TextCaseCalls() {
    return {
        {"QXToLowerA", MapNarrow(QXToLowerA)},
        {"QXToUpperA", MapNarrow(QXToUpperA)},
        {"QXToLowerW", MapWide(QXToLowerW)},
        {"QXToUpperW", MapWide(QXToUpperW)},
        {"QXIsAlphaA", Class(QXIsAlphaA)},
        {"QXIsDigitA", Class(QXIsDigitA)},
        {"QXIsSpaceA", Class(QXIsSpaceA)},
        {"QXIsAlphaW", Class(QXIsAlphaW)},
        {"QXIsDigitW", Class(QXIsDigitW)},
        {"QXIsSpaceW", Class(QXIsSpaceW)},
        {"QXStrToLowerA", MapText(QXStrToLowerA)},
        {"QXStrToUpperA", MapText(QXStrToUpperA)},
        {"QXStrToLowerW", MapText(QXStrToLowerW)},
        {"QXStrToUpperW", MapText(QXStrToUpperW)},
        {"QXStrToLowerUTF16", MapText16(QXStrToLowerUTF16)},
        {"QXStrToUpperUTF16", MapText16(QXStrToUpperUTF16)},
    };
}

void PrintTextCase() {
    const auto narrow = [](auto function) {
        return [function](uint32_t unit) {
            return static_cast<uint32_t>(function(static_cast<signed char>(unit)));
        };
    };
    const auto wide = [](auto function) {
        return [function](uint32_t unit) {
            return static_cast<uint32_t>(function(static_cast<wchar>(unit)));
        };
    };
    PrintMapping("QXToLowerA", narrow(QXToLowerA), kAsciiUnits);
    PrintMapping("QXToUpperA", narrow(QXToUpperA), kAsciiUnits);
    PrintMapping("QXToLowerW", wide(QXToLowerW), kWideUnits);
    PrintMapping("QXToUpperW", wide(QXToUpperW), kWideUnits);
    PrintClass("QXIsAlphaA", narrow(QXIsAlphaA), kNarrowUnits);
    PrintClass("QXIsDigitA", narrow(QXIsDigitA), kNarrowUnits);
    PrintClass("QXIsSpaceA", narrow(QXIsSpaceA), kNarrowUnits);
    PrintClass("QXIsAlphaW", wide(QXIsAlphaW), kWideUnits);
    PrintClass("QXIsDigitW", wide(QXIsDigitW), kWideUnits);
    PrintClass("QXIsSpaceW", wide(QXIsSpaceW), kWideUnits);
}

#include <qxcore/string.h>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

template <typename Result, typename Unit>
MakeCall MapUnit(Result (*map)(Unit)) {
    return [map](Random& random, Line& line) {
        const auto unit = static_cast<Unit>(AnyCodePoint(random));
        line.Add("unit", static_cast<int32_t>(unit)).Add("->", map(unit));
    };
}

// A class is a yes or a no.
template <typename Unit>
MakeCall Class(int32_t (*isInClass)(Unit)) {
    return [isInClass](Random& random, Line& line) {
        const auto unit = static_cast<Unit>(AnyCodePoint(random));
        line.Add("unit", static_cast<int32_t>(unit)).Add("->", isInClass(unit) != 0);
    };
}

template <typename Unit>
MakeCall MapText(Unit* (*map)(Unit*)) {
    return [map](Random& random, Line& line) {
        const auto text = Text<Unit>(random);
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

constexpr uint32_t kUnits = 0x10000;

// A bit for each unit, 32 units a number.
void PrintClass(const char* name, const std::function<bool(uint32_t)>& isInClass, uint32_t units) {
    for (uint32_t begin = 0; begin < units; begin += 32) {
        uint32_t bits = 0;
        for (uint32_t bit = 0; bit < 32; ++bit) {
            bits |= (isInClass(begin + bit) ? 1U : 0U) << bit;
        }
        Line(name).Hex("from", begin).Hex("units", bits);
    }
}

void PrintMapping(const char* name, const std::function<uint32_t(uint32_t)>& map, uint32_t units) {
    for (uint32_t unit = 0; unit < units; ++unit) {
        if (map(unit) != unit) {
            Line(name).Hex("unit", unit).Hex("->", map(unit));
        }
    }
}

}  // namespace

std::vector<Call> TextCaseCalls() {
    return {
        {"QXToLowerA", MapUnit(QXToLowerA)},
        {"QXToUpperA", MapUnit(QXToUpperA)},
        {"QXToLowerW", MapUnit(QXToLowerW)},
        {"QXToUpperW", MapUnit(QXToUpperW)},
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
    PrintMapping("QXToLowerA", narrow(QXToLowerA), 0x100);
    PrintMapping("QXToUpperA", narrow(QXToUpperA), 0x100);
    PrintMapping("QXToLowerW", wide(QXToLowerW), kUnits);
    PrintMapping("QXToUpperW", wide(QXToUpperW), kUnits);
    PrintClass("QXIsAlphaA", narrow(QXIsAlphaA), 0x100);
    PrintClass("QXIsDigitA", narrow(QXIsDigitA), 0x100);
    PrintClass("QXIsSpaceA", narrow(QXIsSpaceA), 0x100);
    PrintClass("QXIsAlphaW", wide(QXIsAlphaW), kUnits);
    PrintClass("QXIsDigitW", wide(QXIsDigitW), kUnits);
    PrintClass("QXIsSpaceW", wide(QXIsSpaceW), kUnits);
}

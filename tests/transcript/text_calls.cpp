#include <qxcore/string.h>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/calls.h"

namespace {

// ---- Kinds

// A text like the one before.
template <typename Unit>
std::basic_string<Unit> Other(Random& random, const Draft& draft) {
    return random.OneIn(5) ? Text<Unit>(random) : Variation(random, draft.Text<Unit>());
}

// The runtime's mappings and comparisons without case stay within what all runtimes agree on.
std::string AgreedCase(const std::string& text) {
    return allowance::NarrowCaseIsTheSystems(text);
}
std::u16string AgreedCase(const std::u16string& text) {
    return allowance::WideCaseIsTheRuntimes(text);
}

template <typename Unit>
std::basic_string<Unit> Agreed(Random& random) {
    return AgreedCase(Text<Unit>(random));
}

template <typename Unit>
std::basic_string<Unit> OtherAgreed(Random& random, const Draft& draft) {
    return AgreedCase(Other<Unit>(random, draft));
}

template <typename Unit>
Unit AgreedUnit(Random& random) {
    const std::basic_string<Unit> text(1, static_cast<Unit>(AnyCodePoint(random)));
    return AgreedCase(text)[0];
}

template <typename Unit>
Buffer<Unit> AgreedInPlace(Random& random) {
    const auto text = Agreed<Unit>(random);
    return Buffer<Unit>(text.size() + 1, text + Unit{0});
}

// The mapping takes as many units again behind the text, and may need a terminator behind those.
Buffer<wchar> TwiceInPlace(Random& random) {
    const std::u16string text = WideText(random);
    Buffer<wchar> buffer(2 * text.size() + 1, text + u'\0' + text + u'\0');
    buffer.Begin()[2 * text.size()] = 0;
    return buffer;
}

// A unit of the text as a rule.
template <typename Unit>
Unit Sought(Random& random, const Draft& draft) {
    const auto& text = draft.Text<Unit>();
    return text.empty() || random.OneIn(4) ? static_cast<Unit>(random.Next())
                                           : text.c_str()[random.Below(text.size() + 1)];
}

uint32_t SoughtCodePoint(Random& random, const Draft& draft) {
    return random.OneIn(2)   ? Sought<wchar>(random, draft)
           : random.OneIn(8) ? static_cast<uint32_t>(random.Next())
                             : AnyCodePoint(random);
}

template <typename Unit>
std::basic_string<Unit> Part(Random& random, const Draft& draft) {
    const auto begin = random.Below(draft.Text<Unit>().size() + 1);
    const auto part = draft.Text<Unit>().substr(begin, random.Below(5));
    return random.OneIn(4) ? Variation(random, part) : part;
}

size_t ComparedUnits(Random& random) {
    return random.OneIn(8) ? 0x7FFFFFFF : random.Below(16);
}

// Text with room for another one and 24 units behind it.
template <typename Unit>
Buffer<Unit> Extensible(Random& random, const Draft& draft) {
    const auto old = Text<Unit>(random);
    return Buffer<Unit>(old.size() + draft.units + 26, old + Unit{0});
}

// Text that may have no terminator within its few units.
template <typename Unit>
Buffer<Unit> Bounded(Random& random) {
    const size_t size = random.Between(1, 24);
    auto old = Text<Unit>(random) + Unit{0};
    old.resize(std::min(old.size(), size));
    return Buffer<Unit>(size, old);
}

constexpr auto kUpTo20 = Within<0, 19>;
constexpr auto kUpTo24 = Within<0, 23>;

size_t CountedUnits(Random& random, const Draft& draft) {
    return random.OneIn(3) ? draft.units : random.Below(24);
}

// ---- Functions that need something round them

template <typename Unit, auto kDuplicate, auto kFree, typename... Limit>
std::basic_string<Unit> Duplicated(const Unit* text, Limit... limit) {
    Unit* const copy = kDuplicate(text, limit...);
    const std::basic_string<Unit> shown = copy != nullptr ? copy : std::basic_string<Unit>();
    kFree(copy);
    return shown;
}

void CopyList(Random& random, Line& line) {
    std::string texts[4];
    const char* arguments[4];
    size_t size = 1;
    for (int index = 0; index < 4; ++index) {
        texts[index] = NarrowText(random);
        arguments[index] = random.OneIn(4) ? nullptr : texts[index].c_str();
        size += texts[index].size();
        line.Add("text", arguments[index] == nullptr ? "null" : arguments[index]);
    }
    const int32_t number = static_cast<int32_t>(random.Below(6)) - 1;
    Buffer<char> target(size);
    line.Add("number", number);
    line.Add("->", QXStrCpyCatA(target.Begin(), number, arguments[0], arguments[1], arguments[2],
                                arguments[3]));
    line.Add("target", target.Content());
}

// All tokens of a text, and what becomes of it.
template <typename Unit>
MakeCall Tokens(Unit* (*next)(Unit**, const Unit*)) {
    return [next](Random& random, Line& line) {
        auto text = Text<Unit>(random);
        const std::basic_string<Unit> delimiters = Text<Unit>(random).substr(0, 3) + Unit{','};
        line.Add("text", text).Add("delimiters", delimiters);
        Unit* cursor = text.data();
        const Unit* token = text.data();
        for (int left = 400; left > 0 && token != nullptr; --left) {
            token = next(&cursor, delimiters.c_str());
            line.Place("token", token, const_cast<const Unit*>(text.data()));
        }
        line.Add("left", text).Add("cursorIsNull", cursor == nullptr);
    };
}

// ---- Classes and mappings of all units

// A bit for each unit, 32 units a number.
void PrintClass(const char* name, const std::function<bool(uint32_t)>& isInClass, uint32_t units) {
    for (uint32_t begin = 0; begin < units; begin += 32) {
        uint32_t bits = 0;
        for (uint32_t bit = 0; bit < 32; ++bit) {
            const bool shown = !allowance::WideClassIsTheRuntimes(begin + bit);
            bits |= (shown && isInClass(begin + bit) ? 1U : 0U) << bit;
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

std::vector<Call> TextCalls() {
    constexpr auto kAnySign = allowance::MappedUnitHasAnySign;
    return {
        {"QXStrLenA", Row(QXStrLenA, NarrowText)},
        {"QXStrLenA_32", Row(QXStrLenA_32, NarrowText)},
        {"QXStrLenW", Row(QXStrLenW, WideText)},
        {"QXStrLenW_32", Row(QXStrLenW_32, WideText)},
        {"QXStrLenUTF16", Row(QXStrLenUTF16, WideText)},
        {"QXStrNLenA", Row(QXStrNLenA, NarrowText, kUpTo20)},
        {"QXStrNLenW", Row(QXStrNLenW, WideText, kUpTo20)},
        {"QXStrNLenUTF16", Row(QXStrNLenUTF16, WideText, kUpTo20)},
        {"QXStrDupA", Row(Duplicated<char, QXStrDupA, QXStrFreeA>, TextOrNull<char>)},
        {"QXStrDupW", Row(Duplicated<wchar, QXStrDupW, QXStrFreeW>, TextOrNull<wchar>)},
        {"QXStrNDupA",
         Row(Duplicated<char, QXStrNDupA, QXStrFreeA, uint32_t>, TextOrNull<char>, kUpTo20)},
        {"QXStrNDupW",
         Row(Duplicated<wchar, QXStrNDupW, QXStrFreeW, uint32_t>, TextOrNull<wchar>, kUpTo20)},
        {"QXStrCpyA", Row(QXStrCpyA, Extensible<char>, NarrowText)},
        {"QXStrCpyW", Row(QXStrCpyW, Extensible<wchar>, WideText)},
        {"QXStrCatA", Row(QXStrCatA, Extensible<char>, NarrowText)},
        {"QXStrCatW", Row(QXStrCatW, Extensible<wchar>, WideText)},
        {"QXStrNCpyA", Row(QXStrNCpyA, Extensible<char>, NarrowText, kUpTo24)},
        {"QXStrNCpyW", Row(QXStrNCpyW, Extensible<wchar>, WideText, kUpTo24)},
        {"QXStrNCatA", Row(QXStrNCatA, Extensible<char>, NarrowText, kUpTo24)},
        {"QXStrNCatW", Row(QXStrNCatW, Extensible<wchar>, WideText, kUpTo24)},
        {"QXStrNZCpyA", Row(QXStrNZCpyA, Bounded<char>, Room, NarrowText, CountedUnits)},
        {"QXStrNZCpyW", Row(QXStrNZCpyW, Bounded<wchar>, Room, WideText, CountedUnits)},
        {"QXStrNZCpyUTF16", Row(QXStrNZCpyUTF16, Bounded<wchar>, Room, WideText, CountedUnits)},
        {"QXStrNZCatA", Row(QXStrNZCatA, Bounded<char>, Room, NarrowText, CountedUnits)},
        {"QXStrNZCatW", Row(QXStrNZCatW, Bounded<wchar>, Room, WideText, CountedUnits)},
        {"QXStrNZCatUTF16", Row(QXStrNZCatUTF16, Bounded<wchar>, Room, WideText, CountedUnits)},
        {"QXStrCpyCatA", CopyList},
        {"QXStrChrA", Row(QXStrChrA, NarrowText, Sought<char>)},
        {"QXStrChrW", Row(QXStrChrW, WideText, Sought<wchar>)},
        {"QXStrChrUCS2", Row(QXStrChrUCS2, WideText, Sought<wchar>)},
        {"QXStrChrUTF16", Row(QXStrChrUTF16, WideText, SoughtCodePoint)},
        {"QXStrRChrA", Row(QXStrRChrA, NarrowText, Sought<char>)},
        {"QXStrRChrW", Row(QXStrRChrW, WideText, Sought<wchar>)},
        {"QXStrRChrUCS2", Row(QXStrRChrUCS2, WideText, Sought<wchar>)},
        {"QXStrRChrUTF16", Row(QXStrRChrUTF16, WideText, SoughtCodePoint)},
        {"QXStrStrA", Row(QXStrStrA, NarrowText, Part<char>)},
        {"QXStrStrW", Row(QXStrStrW, WideText, Part<wchar>)},
        {"QXStrStrUTF16", Row(QXStrStrUTF16, WideText, Part<wchar>)},
        {"QXStrTokA", Tokens(QXStrTokA)},
        {"QXStrTokW", Tokens(QXStrTokW)},
        {"QXStrCmpA", Row(QXStrCmpA, NarrowText, Other<char>)},
        {"QXStrCmpW", Row(QXStrCmpW, WideText, Other<wchar>)},
        {"QXStrCmpUCS2", Row(QXStrCmpUCS2, WideText, Other<wchar>)},
        {"QXStrCmpUTF16", Row<kSign>(QXStrCmpUTF16, WideText, Other<wchar>)},
        {"QXStrICmpA", Row(QXStrICmpA, Agreed<char>, OtherAgreed<char>)},
        {"QXStrICmpW", Row<kSign>(QXStrICmpW, Agreed<wchar>, OtherAgreed<wchar>)},
        {"QXStrICmpUCS2", Row(QXStrICmpUCS2, WideText, Other<wchar>)},
        {"QXStrICmpUTF16", Row<kSign>(QXStrICmpUTF16, WideText, Other<wchar>)},
        {"QXStrNCmpA", Row<kSign>(QXStrNCmpA, NarrowText, Other<char>, ComparedUnits)},
        {"QXStrNCmpW", Row<kSign>(QXStrNCmpW, WideText, Other<wchar>, ComparedUnits)},
        {"QXStrNCmpUTF16", Row<kSign>(QXStrNCmpUTF16, WideText, Other<wchar>, ComparedUnits)},
        {"QXStrNICmpA", Row(QXStrNICmpA, Agreed<char>, OtherAgreed<char>, ComparedUnits)},
        {"QXStrNICmpW", Row<kSign>(QXStrNICmpW, Agreed<wchar>, OtherAgreed<wchar>, ComparedUnits)},
        {"QXStrNICmpUTF16", Row<kSign>(QXStrNICmpUTF16, WideText, Other<wchar>, ComparedUnits)},
        {"QXToLowerA", Row<kAnySign>(QXToLowerA, AgreedUnit<char>)},
        {"QXToUpperA", Row<kAnySign>(QXToUpperA, AgreedUnit<char>)},
        {"QXToLowerW", Row(QXToLowerW, AgreedUnit<wchar>)},
        {"QXToUpperW", Row(QXToUpperW, AgreedUnit<wchar>)},
        {"QXIsAlphaA", Row<kYesOrNo>(QXIsAlphaA, AgreedUnit<char>)},
        {"QXIsDigitA", Row<kYesOrNo>(QXIsDigitA, AgreedUnit<char>)},
        {"QXIsSpaceA", Row<kYesOrNo>(QXIsSpaceA, AgreedUnit<char>)},
        {"QXIsAlphaW", Row<kYesOrNo>(QXIsAlphaW, AgreedUnit<wchar>)},
        {"QXIsDigitW", Row<kYesOrNo>(QXIsDigitW, AgreedUnit<wchar>)},
        {"QXIsSpaceW", Row<kYesOrNo>(QXIsSpaceW, AgreedUnit<wchar>)},
        {"QXStrToLowerA", Row(QXStrToLowerA, AgreedInPlace<char>)},
        {"QXStrToUpperA", Row(QXStrToUpperA, AgreedInPlace<char>)},
        {"QXStrToLowerW", Row(QXStrToLowerW, AgreedInPlace<wchar>)},
        {"QXStrToUpperW", Row(QXStrToUpperW, AgreedInPlace<wchar>)},
        {"QXStrToLowerUTF16", Row(QXStrToLowerUTF16, TwiceInPlace)},
        {"QXStrToUpperUTF16", Row(QXStrToUpperUTF16, TwiceInPlace)},
    };
}

void PrintTextCase() {
    constexpr uint32_t kAsciiUnits = 0x80;
    constexpr uint32_t kNarrowUnits = 0x100;
    constexpr uint32_t kWideUnits = 0x10000;
    const auto narrow = [](auto function) {
        return [=](uint32_t unit) { return uint32_t(function(static_cast<signed char>(unit))); };
    };
    const auto wide = [](auto function) {
        return [=](uint32_t unit) { return uint32_t(function(static_cast<wchar>(unit))); };
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

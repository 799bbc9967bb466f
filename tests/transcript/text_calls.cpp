#include <qxcore/string.h>

#include "transcript/allowances.h"
#include "transcript/calls.h"

namespace {

// ---- Kinds

// A text like the one before.
template <typename Unit>
std::basic_string<Unit> Other(Random& random, const Draft& draft) {
    return random.OneIn(5) ? Text<Unit>(random) : Variation(random, draft.Text<Unit>());
}

// The runtime's mappings and comparisons without case stay within what all runtimes agree on.
template <typename Unit>
std::basic_string<Unit> Agreed(Random& random) {
    return allowance::CaseIsTheRuntimes(Text<Unit>(random));
}

template <typename Unit>
std::basic_string<Unit> OtherAgreed(Random& random, const Draft& draft) {
    return allowance::CaseIsTheRuntimes(Other<Unit>(random, draft));
}

template <typename Unit>
Unit AgreedUnit(Random& random) {
    const std::basic_string<Unit> text(1, static_cast<Unit>(AnyCodePoint(random)));
    return allowance::CaseIsTheRuntimes(text)[0];
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
    buffer.Get()[2 * text.size()] = 0;
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
    std::basic_string<Unit> shown = copy != nullptr ? copy : std::basic_string<Unit>();
    kFree(copy);
    return shown;
}

void CopyList(Random& random, Line& line) {
    MaybeText<char> texts[4];
    size_t size = 1;
    for (auto& each : texts) {
        each = {NarrowText(random), random.OneIn(4)};
        each.Show(line, "text");
        size += each.text.size();
    }
    const int32_t number = static_cast<int32_t>(random.Below(6)) - 1;
    Buffer<char> target(size);
    line.Add("number", number);
    line.Add("->", QXStrCpyCatA(target.Get(), number, texts[0].c_str(), texts[1].c_str(),
                                texts[2].c_str(), texts[3].c_str()));
    line.Add("target", target.Content());
}

// All tokens of a text, and what becomes of it.
template <typename Unit>
auto Tokens(Unit* (*next)(Unit**, const Unit*)) {
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

}  // namespace

Calls TextCalls() {
    constexpr auto kAnySign = allowance::MappedUnitHasAnySign;
    return {
        CALLS_A_W(kExact, QXStrLen, Text<Unit>),
        {NAMED(QXStrLenA_32, NarrowText)},
        {NAMED(QXStrLenW_32, WideText)},
        {NAMED(QXStrLenUTF16, WideText)},
        CALLS_A_W(kExact, QXStrNLen, Text<Unit>, kUpTo20),
        {NAMED(QXStrNLenUTF16, WideText, kUpTo20)},
        {"QXStrDupA", Row(Duplicated<char, QXStrDupA, QXStrFreeA>, TextOrNull<char>)},
        {"QXStrDupW", Row(Duplicated<wchar, QXStrDupW, QXStrFreeW>, TextOrNull<wchar>)},
        {"QXStrNDupA",
         Row(Duplicated<char, QXStrNDupA, QXStrFreeA, uint32_t>, TextOrNull<char>, kUpTo20)},
        {"QXStrNDupW",
         Row(Duplicated<wchar, QXStrNDupW, QXStrFreeW, uint32_t>, TextOrNull<wchar>, kUpTo20)},
        CALLS_A_W(kExact, QXStrCpy, Extensible<Unit>, Text<Unit>),
        CALLS_A_W(kExact, QXStrCat, Extensible<Unit>, Text<Unit>),
        CALLS_A_W(kExact, QXStrNCpy, Extensible<Unit>, Text<Unit>, kUpTo24),
        CALLS_A_W(kExact, QXStrNCat, Extensible<Unit>, Text<Unit>, kUpTo24),
        CALLS_A_W(kExact, QXStrNZCpy, Bounded<Unit>, Room, Text<Unit>, CountedUnits),
        CALL_WIDE(kExact, QXStrNZCpyUTF16, Bounded<Unit>, Room, WideText, CountedUnits),
        CALLS_A_W(kExact, QXStrNZCat, Bounded<Unit>, Room, Text<Unit>, CountedUnits),
        CALL_WIDE(kExact, QXStrNZCatUTF16, Bounded<Unit>, Room, WideText, CountedUnits),
        {"QXStrCpyCatA", CopyList},
        CALLS_A_W(kExact, QXStrChr, Text<Unit>, Sought<Unit>),
        CALL_WIDE(kExact, QXStrChrUCS2, WideText, Sought<Unit>),
        {NAMED(QXStrChrUTF16, WideText, SoughtCodePoint)},
        CALLS_A_W(kExact, QXStrRChr, Text<Unit>, Sought<Unit>),
        CALL_WIDE(kExact, QXStrRChrUCS2, WideText, Sought<Unit>),
        {NAMED(QXStrRChrUTF16, WideText, SoughtCodePoint)},
        CALLS_A_W(kExact, QXStrStr, Text<Unit>, Part<Unit>),
        CALL_WIDE(kExact, QXStrStrUTF16, WideText, Part<Unit>),
        {"QXStrTokA", Tokens(QXStrTokA)},
        {"QXStrTokW", Tokens(QXStrTokW)},
        CALLS_A_W(kExact, QXStrCmp, Text<Unit>, Other<Unit>),
        CALL_WIDE(kExact, QXStrCmpUCS2, WideText, Other<Unit>),
        CALL_WIDE(kSign, QXStrCmpUTF16, WideText, Other<Unit>),
        {NAMED(QXStrICmpA, Agreed<char>, OtherAgreed<char>)},
        CALL_WIDE(kSign, QXStrICmpW, Agreed<Unit>, OtherAgreed<Unit>),
        CALL_WIDE(kExact, QXStrICmpUCS2, WideText, Other<Unit>),
        CALL_WIDE(kSign, QXStrICmpUTF16, WideText, Other<Unit>),
        CALLS_A_W(kSign, QXStrNCmp, Text<Unit>, Other<Unit>, ComparedUnits),
        CALL_WIDE(kSign, QXStrNCmpUTF16, WideText, Other<Unit>, ComparedUnits),
        {NAMED(QXStrNICmpA, Agreed<char>, OtherAgreed<char>, ComparedUnits)},
        CALL_WIDE(kSign, QXStrNICmpW, Agreed<Unit>, OtherAgreed<Unit>, ComparedUnits),
        CALL_WIDE(kSign, QXStrNICmpUTF16, WideText, Other<Unit>, ComparedUnits),
        {"QXToLowerA", Row<kAnySign>(QXToLowerA, AgreedUnit<char>)},
        {"QXToUpperA", Row<kAnySign>(QXToUpperA, AgreedUnit<char>)},
        {NAMED(QXToLowerW, AgreedUnit<wchar>)},
        {NAMED(QXToUpperW, AgreedUnit<wchar>)},
        CALLS_A_W(kYesOrNo, QXIsAlpha, AgreedUnit<Unit>),
        CALLS_A_W(kYesOrNo, QXIsDigit, AgreedUnit<Unit>),
        CALLS_A_W(kYesOrNo, QXIsSpace, AgreedUnit<Unit>),
        CALLS_A_W(kExact, QXStrToLower, AgreedInPlace<Unit>),
        CALLS_A_W(kExact, QXStrToUpper, AgreedInPlace<Unit>),
        {NAMED(QXStrToLowerUTF16, TwiceInPlace)},
        {NAMED(QXStrToUpperUTF16, TwiceInPlace)},
    };
}

// Classes and mappings of all units.
void PrintTextCase() {
    for (uint32_t unit = 0; unit < 0x10000; ++unit) {
        if (allowance::WideClassIsTheRuntimes(unit)) {
            continue;
        }
        const auto wide = static_cast<wchar>(unit);
        Line("wide")
            .Hex("unit", unit)
            .Hex("lower", QXToLowerW(wide))
            .Hex("upper", QXToUpperW(wide))
            .Add("alpha", QXIsAlphaW(wide) != 0)
            .Add("digit", QXIsDigitW(wide) != 0)
            .Add("space", QXIsSpaceW(wide) != 0);
        const auto narrow = static_cast<char>(unit);
        if (unit < 0x100) {
            Line("narrow")
                .Hex("unit", unit)
                .Add("alpha", QXIsAlphaA(narrow) != 0)
                .Add("digit", QXIsDigitA(narrow) != 0)
                .Add("space", QXIsSpaceA(narrow) != 0);
        }
        if (unit < 0x80) {
            Line("ASCII").Hex("lower", QXToLowerA(narrow)).Hex("upper", QXToUpperA(narrow));
        }
    }
}

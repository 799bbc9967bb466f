#include <qxcore/string.h>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

// A unit of the text as a rule.
template <typename Unit>
Unit Sought(Random& random, const std::basic_string<Unit>& text) {
    return text.empty() || random.OneIn(4) ? static_cast<Unit>(random.Next())
                                           : text.c_str()[random.Below(text.size() + 1)];
}

template <typename Unit>
MakeCall FindUnit(Unit* (*find)(const Unit*, Unit)) {
    return [find](Random& random, Line& line) {
        const auto text = Text<Unit>(random);
        const Unit unit = Sought(random, text);
        line.Add("text", text).Add("unit", static_cast<uint32_t>(unit));
        line.Place("->", find(text.c_str(), unit), const_cast<Unit*>(text.c_str()));
    };
}

MakeCall FindCodePoint(wchar* (*find)(const wchar*, uint32_t)) {
    return [find](Random& random, Line& line) {
        const std::u16string text = WideText(random);
        const uint32_t codePoint = random.OneIn(2)   ? Sought(random, text)
                                   : random.OneIn(8) ? static_cast<uint32_t>(random.Next())
                                                     : AnyCodePoint(random);
        line.Add("text", text).Hex("codePoint", codePoint);
        line.Place("->", find(text.c_str(), codePoint), const_cast<wchar*>(text.c_str()));
    };
}

template <typename Unit>
MakeCall FindText(Unit* (*find)(const Unit*, const Unit*)) {
    return [find](Random& random, Line& line) {
        const auto text = Text<Unit>(random);
        const auto begin = random.Below(text.size() + 1);
        auto sought = text.substr(begin, random.Below(5));
        if (random.OneIn(4)) {
            sought = Variation(random, sought);
        }
        line.Add("text", text).Add("sought", sought);
        line.Place("->", find(text.c_str(), sought.c_str()), const_cast<Unit*>(text.c_str()));
    };
}

// All tokens of a text, and what becomes of it.
template <typename Unit>
MakeCall Tokens(Unit* (*next)(Unit**, const Unit*)) {
    return [next](Random& random, Line& line) {
        auto text = Text<Unit>(random);
        const std::basic_string<Unit> delimiters = Text<Unit>(random).substr(0, 3) + Unit{','};
        line.Add("text", text).Add("delimiters", delimiters);
        Unit* cursor = text.data();
        for (int left = 400; left > 0; --left) {
            const Unit* const token = next(&cursor, delimiters.c_str());
            line.Place("token", token, const_cast<const Unit*>(text.data()));
            if (token == nullptr) {
                break;
            }
        }
        line.Add("left", text).Add("cursorIsNull", cursor == nullptr);
    };
}

}  // namespace

std::vector<Call> TextSearchCalls() {
    return {
        {"QXStrChrA", FindUnit(QXStrChrA)},
        {"QXStrChrW", FindUnit(QXStrChrW)},
        {"QXStrChrUCS2", FindUnit(QXStrChrUCS2)},
        {"QXStrChrUTF16", FindCodePoint(QXStrChrUTF16)},
        {"QXStrRChrA", FindUnit(QXStrRChrA)},
        {"QXStrRChrW", FindUnit(QXStrRChrW)},
        {"QXStrRChrUCS2", FindUnit(QXStrRChrUCS2)},
        {"QXStrRChrUTF16", FindCodePoint(QXStrRChrUTF16)},
        {"QXStrStrA", FindText(QXStrStrA)},
        {"QXStrStrW", FindText(QXStrStrW)},
        {"QXStrStrUTF16", FindText(QXStrStrUTF16)},
        {"QXStrTokA", Tokens(QXStrTokA)},
        {"QXStrTokW", Tokens(QXStrTokW)},
    };
}

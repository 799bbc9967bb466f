// Case mapping.
#include <qxcore/string.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <memory>
#include <new>

#include "platform/crt_text.h"
#include "platform/types.h"
#include "text/unit_scan.h"

namespace {

template <char kFrom, typename Unit>
void FoldUnits(Unit* text, std::size_t count) {
    constexpr unit_scan::FoldAscii<Unit, kFrom> kFold;
    const auto foldAt = [=](std::size_t index) {
        return static_cast<Unit>(kFold(static_cast<unit_scan::Plain<Unit>>(text[index])));
    };
    unsigned changes = 0;
    for (std::size_t index = 0; index < count; ++index) {
        changes |= static_cast<unsigned>(text[index] ^ foldAt(index));
    }
    // Text that is as it should be is not written to.
    for (std::size_t index = 0; changes != 0 && index < count; ++index) {
        text[index] = foldAt(index);
    }
}

// A number of units that the compiler turns into a few instructions.
template <typename Unit>
constexpr std::size_t kGroup = 32 / sizeof(Unit);

// Mapping twice does no harm, so the last group may overlap the one before it.
template <char kFrom, typename Unit>
void FoldText(Unit* text, std::size_t count) {
    constexpr std::size_t kUnits = kGroup<Unit>;
    if (count < kUnits) {
        FoldUnits<kFrom>(text, count);
        return;
    }
    for (std::size_t index = 0; index < count - kUnits; index += kUnits) {
        FoldUnits<kFrom>(text + index, kUnits);
    }
    FoldUnits<kFrom>(text + count - kUnits, kUnits);
}

// ASCII up to the first other unit is mapped here, the remainder by the C runtime.
template <char kFrom, typename Unit>
Unit* MapText(Unit* text, Unit* (*mapRemainder)(Unit*)) {
    const std::size_t length = unit_scan::FindNotAscii(text);
    FoldText<kFrom>(text, length);
    if (text[length] != 0) {
        mapRemainder(text + length);
    }
    return text;
}

template <char kFrom, typename Unit>
Unit FoldUnit(Unit unit) {
    FoldUnits<kFrom>(&unit, 1);
    return unit;
}

using MapWithICU = i32(char16_t*, i32, const char16_t*, i32, const char*, UErrorCode*);

// A mapping that lengthens what it maps is cut at the capacity. In place, some versions of ICU
// leave the text as it was instead.
void MapFromCopy(char16_t* text, i32 length, MapWithICU* map) {
    const auto units = static_cast<std::size_t>(length);
    const std::unique_ptr<char16_t[]> copy(new (std::nothrow) char16_t[units]);
    if (copy != nullptr) {
        std::copy_n(text, units, copy.get());
        UErrorCode status = U_ZERO_ERROR;
        map(text, length, copy.get(), length, nullptr, &status);
    }
}

// Clients rely on the doubled length: the units behind the terminator are mapped too.
char16_t* MapDoubled(char16_t* text, MapWithICU* map) {
    const auto length = static_cast<i32>(unit_scan::FindEnd(text) * sizeof(char16_t));
    UErrorCode status = U_ZERO_ERROR;
    map(text, length, text, length, nullptr, &status);
    if (status == U_BUFFER_OVERFLOW_ERROR) {
        MapFromCopy(text, length, map);
    }
    return text;
}

}  // namespace

int32_t QXToLowerA(char unit) {
    const auto code = static_cast<signed char>(unit);
    return code >= 0 ? FoldUnit<'A'>(unit) : platform::tolower(code);
}

int32_t QXToUpperA(char unit) {
    const auto code = static_cast<signed char>(unit);
    return code >= 0 ? FoldUnit<'a'>(unit) : platform::toupper(code);
}

uint32_t QXToLowerW(wchar unit) {
    return unit <= 127 ? FoldUnit<'A'>(unit) : platform::towlower(unit);
}

uint32_t QXToUpperW(wchar unit) {
    return unit <= 127 ? FoldUnit<'a'>(unit) : platform::towupper(unit);
}

char* QXStrToLowerA(char* text) {
    return MapText<'A'>(text, platform::_strlwr);
}

char* QXStrToUpperA(char* text) {
    return MapText<'a'>(text, platform::_strupr);
}

wchar* QXStrToLowerW(wchar* text) {
    return MapText<'A'>(text, platform::_wcslwr);
}

wchar* QXStrToUpperW(wchar* text) {
    return MapText<'a'>(text, platform::_wcsupr);
}

wchar* QXStrToLowerUTF16(wchar* text) {
    return MapDoubled(text, u_strToLower);
}

wchar* QXStrToUpperUTF16(wchar* text) {
    return MapDoubled(text, u_strToUpper);
}

// Character classes.
#include <qxcore/string.h>

#include "platform/crt_text.h"
#include "platform/types.h"

namespace {

constexpr u32 kLastAscii = 127;

bool IsAsciiSpace(u32 unit) {
    return unit == 32 || (unit >= 9 && unit <= 13);
}

}  // namespace

int32_t QXIsAlphaA(signed char unit) {
    return platform::isalpha(unit);
}

int32_t QXIsAlphaW(wchar unit) {
    return platform::iswalpha(unit);
}

int32_t QXIsDigitA(signed char unit) {
    return platform::isdigit(unit);
}

int32_t QXIsDigitW(wchar unit) {
    return platform::iswdigit(unit);
}

int32_t QXIsSpaceA(char unit) {
    const auto code = static_cast<u8>(unit);
    return code <= kLastAscii ? IsAsciiSpace(code)
                              : platform::isspace(static_cast<signed char>(unit));
}

int32_t QXIsSpaceW(wchar unit) {
    return unit <= kLastAscii ? IsAsciiSpace(unit) : platform::iswspace(unit);
}

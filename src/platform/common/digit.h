#ifndef QX_PLATFORM_COMMON_DIGIT_H
#define QX_PLATFORM_COMMON_DIGIT_H

#include <type_traits>

#include "platform/types.h"

namespace platform {

// The value of a digit or an ASCII letter, or 36 and more for what is no digit in any radix.
template <typename Unit>
unsigned DigitOf(Unit unit) noexcept {
    const unsigned code = static_cast<std::conditional_t<sizeof(Unit) == 1, u8, u16>>(unit);
    if (code - '0' < 10) {
        return code - '0';
    }
    const unsigned letter = (code | 0x20) - 'a';
    return letter < 26 ? letter + 10 : 36;
}

}  // namespace platform

#endif

// Wide text for those who take narrow text.
#ifndef QX_PLATFORM_POSIX_ALERTS_NARROW_TEXT_H
#define QX_PLATFORM_POSIX_ALERTS_NARROW_TEXT_H

#include <string>
#include <string_view>

#include "platform/multibyte.h"
#include "platform/types.h"

namespace platform {

// UTF-8; what is ill-formed becomes U+FFFD.
inline std::string NarrowText(std::u16string_view text) {
    const i32 units = static_cast<i32>(text.size());
    std::string narrow(text.size() * 3, '\0');
    const i32 bytes = units != 0 ? WideCharToMultiByte(text.data(), units, narrow.data(),
                                                       static_cast<i32>(narrow.size()))
                                 : 0;
    narrow.resize(static_cast<std::size_t>(bytes));
    return narrow;
}

}  // namespace platform

#endif

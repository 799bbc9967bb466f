#include "text/text_strings.h"

#include <qxcore/string.h>

#include <cstring>

#include "platform/multibyte.h"

namespace {

constexpr std::size_t kLongestText = 0x7FFFFFFE;

// Measures, then fills. A failing measurement gives an empty string.
template <typename Target, typename Source, typename Convert>
Target ConvertWhole(const Source* text, std::size_t length, Convert convert) {
    Target result;
    if (length == 0 || length > kLongestText) {
        return result;
    }
    const i32 units = static_cast<i32>(length);
    const i32 needed = convert(text, units, nullptr, 0);
    result.resize(static_cast<std::size_t>(needed));
    convert(text, units, result.data(), needed);
    return result;
}

}  // namespace

std::u16string QXNarrowToWideString(const char* text) {
    return ConvertWhole<std::u16string>(text, std::strlen(text), platform::MultiByteToWideChar);
}

std::string QXWideToNarrowString(const char16_t* text) {
    return ConvertWhole<std::string>(text, QXStrLenW(text), platform::WideCharToMultiByte);
}

#include "text.h"

#include <qxcore/transform.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>

#include "failure.h"

namespace {

constexpr int32_t kFail = -1;

int32_t LengthOf(std::size_t length) {
    if (length > std::size_t{std::numeric_limits<int32_t>::max()}) {
        throw Failure("a text of over 2 GiB");
    }
    return static_cast<int32_t>(length);
}

bool IsHigh(char16_t unit) {
    return (unit & 0xFC00) == 0xD800;
}

bool IsLow(char16_t unit) {
    return (unit & 0xFC00) == 0xDC00;
}

bool IsControl(char16_t unit) {
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

void AppendEscape(char16_t unit, std::string& shown) {
    constexpr std::string_view kUnits("\0\t\n\r", 4);
    constexpr std::string_view kLetters = "0tnr";
    const std::size_t known =
        unit < 0x80 ? kUnits.find(static_cast<char>(unit)) : std::string_view::npos;
    if (known != kUnits.npos) {
        shown += {'\\', kLetters[known]};
        return;
    }
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04X", static_cast<unsigned>(unit));
    shown += escape;
}

char16_t Lower(char16_t unit) {
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
}

template <typename Text>
bool IsSame(Text a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](auto x, unsigned char y) {
        return Lower(static_cast<char16_t>(x)) == Lower(y);
    });
}

}  // namespace

std::optional<std::u16string> WideOf(std::string_view utf8) {
    std::u16string wide(utf8.size() + 1, u'\0');
    std::size_t length = 0;
    const QXResult result = QXEncUTF8ToUTF16(wide.data(), wide.size(), &length, utf8.data(),
                                             LengthOf(utf8.size()), kFail);
    if (QX_FAILED(result)) {
        return std::nullopt;
    }
    wide.resize(length);
    return wide;
}

std::optional<std::string> Utf8Of(std::u16string_view wide) {
    std::string utf8(3 * wide.size() + 1, '\0');
    std::size_t length = 0;
    const QXResult result = QXEncUTF16ToUTF8(utf8.data(), utf8.size(), &length, wide.data(),
                                             LengthOf(wide.size()), kFail);
    if (QX_FAILED(result)) {
        return std::nullopt;
    }
    utf8.resize(length);
    return utf8;
}

std::string Shown(std::u16string_view wide, bool isExact) {
    std::string shown;
    for (std::size_t at = 0; at < wide.size(); ++at) {
        const char16_t unit = wide[at];
        const bool isPair = IsHigh(unit) && at + 1 < wide.size() && IsLow(wide[at + 1]);
        if (isPair) {
            shown += *Utf8Of(wide.substr(at++, 2));
        } else if (IsControl(unit) || IsHigh(unit) || IsLow(unit)) {
            AppendEscape(unit, shown);
        } else if (unit == u'\\' && isExact) {
            shown += "\\\\";
        } else {
            shown += *Utf8Of({&unit, 1});
        }
    }
    return shown;
}

bool IsSameWord(std::string_view a, std::string_view b) {
    return IsSame(a, b);
}

bool IsSameWord(std::u16string_view a, std::string_view b) {
    return IsSame(a, b);
}

#include "config/registry_expand.h"

#include <qxcore/string.h>

#include <cstring>
#include <string>

#include "core/entry_guard.h"
#include "platform/environment.h"
#include "platform/errors.h"

namespace {

constexpr u32 kUnit = sizeof(char16_t);

// The caller's buffer may be unaligned and the text in it without a terminator.
std::u16string TextOf(const void* data, u32 bytes) {
    std::u16string text(bytes / kUnit, u'\0');
    std::memcpy(text.data(), data, text.size() * kUnit);
    return text;
}

}  // namespace

QXResult ExpandValue(void* data, u32 stored, u32 capacity) {
    return RunGuarded([&] {
        const u32 units = capacity / kUnit;
        std::u16string expanded(units, u'\0');
        if (data == nullptr) {
            return QX_S_OK;
        }
        const std::u16string source = TextOf(data, stored);
        const u32 needed =
            platform::ExpandEnvironmentStringsW(source.c_str(), expanded.data(), units);
        if (needed == 0) {
            ThrowLastError();
        }
        if (needed > units) {
            return QX_E_FAIL;
        }
        QXStrNCpyW(static_cast<wchar*>(data), expanded.c_str(), units);
        return QX_S_OK;
    });
}

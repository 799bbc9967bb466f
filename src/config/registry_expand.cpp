#include "config/registry_expand.h"

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
    if (data == nullptr) {
        return QX_S_OK;
    }
    return RunGuarded([&] {
        const u32 units = capacity / kUnit;
        // What is behind the expanded text is zero, as behind a bounded copy.
        std::u16string expanded(units, u'\0');
        const std::u16string source = TextOf(data, stored);
        const u32 needed =
            platform::ExpandEnvironmentStringsW(source.c_str(), expanded.data(), units);
        if (needed == 0) {
            return QXResultFromNative(platform::GetLastError());
        }
        if (needed > units) {
            return QX_E_FAIL;
        }
        std::memcpy(data, expanded.data(), std::size_t{units} * kUnit);
        return QX_S_OK;
    });
}

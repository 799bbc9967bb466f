#include "config/registry_expand.h"

#include <algorithm>
#include <cstring>
#include <memory>
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

// What is behind the expanded text is filled with zero units, as a bounded copy does.
void CopyBack(void* data, char16_t* expanded, u32 needed, u32 units) {
    std::fill(expanded + needed, expanded + units, u'\0');
    std::memcpy(data, expanded, std::size_t{units} * kUnit);
}

}  // namespace

QXResult ExpandValue(void* data, u32 stored, u32 capacity) {
    return RunGuarded([&] {
        const u32 units = capacity / kUnit;
        const auto expanded = std::make_unique_for_overwrite<char16_t[]>(units);
        if (data == nullptr) {
            return QX_S_OK;
        }
        const std::u16string source = TextOf(data, stored);
        const u32 needed =
            platform::ExpandEnvironmentStringsW(source.c_str(), expanded.get(), units);
        if (needed == 0) {
            ThrowLastError();
        }
        if (needed > units) {
            return QX_E_FAIL;
        }
        CopyBack(data, expanded.get(), needed, units);
        return QX_S_OK;
    });
}

#include "config/registry_delete.h"

#include <qxcore/result.h>

#include <string>
#include <vector>

#include "core/core_init.h"

namespace {

// Units, terminator included: a name that is longer ends the walk.
constexpr u32 kNameCapacity = 255;

// What fails below the child shows when the child itself is deleted.
void EmptyChild(platform::HKEY key, const char16_t* name, u32 view) {
    struct Child {
        ~Child() { platform::RegCloseKey(m_key); }
        platform::HKEY m_key = nullptr;
    } child;
    platform::RegOpenKeyExW(key, name, 0, view | platform::kKeyAllAccess, &child.m_key);
    DeleteSubkeys(child.m_key, view);
}

// The children are deleted only behind the walk: until then their indexes hold.
std::vector<std::u16string> EmptyChildren(platform::HKEY key, u32 view) {
    std::vector<std::u16string> names;
    char16_t name[kNameCapacity];
    for (u32 index = 0;; ++index) {
        u32 length = kNameCapacity;
        if (platform::RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr,
                                    nullptr) != 0) {
            return names;
        }
        EmptyChild(key, name, view);
        names.emplace_back(name, length);
    }
}

}  // namespace

u32 DeleteSubkeys(platform::HKEY key, u32 view) {
    if (s_isWinNT == 0) {
        return static_cast<u32>(QX_E_FAIL);
    }
    u32 errors = 0;
    for (const std::u16string& name : EmptyChildren(key, view)) {
        errors |= platform::RegDeleteKeyExW(key, name.c_str(), view, 0);
    }
    return errors;
}

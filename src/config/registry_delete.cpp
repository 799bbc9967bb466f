#include "config/registry_delete.h"

#include <qxcore/result.h>

#include <list>
#include <string>
#include <vector>

#include "core/core_init.h"

namespace {

// Units, terminator included: a name that is longer ends the walk.
constexpr u32 kNameCapacity = 255;

// Where the walk through the keys below one key stands.
struct Level {
    Level() = default;
    ~Level() { platform::RegCloseKey(m_opened); }
    Level(const Level&) = delete;
    Level& operator=(const Level&) = delete;

    void Open(platform::HKEY parent, const std::u16string& name, u32 view) {
        platform::RegOpenKeyExW(parent, name.c_str(), 0, view | platform::kKeyAllAccess, &m_opened);
        m_key = m_opened;
    }

    platform::HKEY m_key = nullptr;
    platform::HKEY m_opened = nullptr;  // null for the caller's key, and if it cannot be opened
    u32 m_next = 0;
    std::vector<std::u16string> m_names;
};

bool NextName(platform::HKEY key, u32 index, std::u16string& name) {
    char16_t buffer[kNameCapacity];
    u32 length = kNameCapacity;
    if (platform::RegEnumKeyExW(key, index, buffer, &length, nullptr, nullptr, nullptr, nullptr) !=
        0) {
        return false;
    }
    name.assign(buffer, length);
    return true;
}

// The children are deleted only behind the walk: until then their indexes hold.
u32 DeleteChildren(const Level& level, u32 view) {
    u32 errors = 0;
    for (const std::u16string& name : level.m_names) {
        errors |= platform::RegDeleteKeyExW(level.m_key, name.c_str(), view, 0);
    }
    return errors;
}

// The levels are kept here and not on the stack, since a tree may be deeper than a thread's stack.
// What fails below a child shows when the child itself is deleted.
u32 DeleteBelow(platform::HKEY top, u32 view) {
    std::list<Level> levels;
    levels.emplace_back().m_key = top;
    std::u16string name;
    for (;;) {
        Level& level = levels.back();
        if (NextName(level.m_key, level.m_next++, name)) {
            level.m_names.push_back(name);
            levels.emplace_back().Open(level.m_key, name, view);
            continue;
        }
        const u32 errors = DeleteChildren(level, view);
        levels.pop_back();
        if (levels.empty()) {
            return errors;
        }
    }
}

}  // namespace

u32 DeleteSubkeys(platform::HKEY key, u32 view) {
    if (s_isWinNT == 0) {
        return static_cast<u32>(QX_E_FAIL);
    }
    return DeleteBelow(key, view);
}

#include "config/registry_map.h"

#include <qxcore/registry.h>

#include <array>

namespace {

// Nothing clears it: the views are always told apart.
constinit i16 s_useRegistryViews = 1;

struct RootRow {
    platform::PredefinedRoot m_key;
    u32 m_view;
};

// By root number.
constexpr std::array<RootRow, 5> kRoots{{
    {platform::kHkeyClassesRoot, platform::kKeyWow64View32},
    {platform::kHkeyLocalMachine, platform::kKeyWow64View32},
    {platform::kHkeyCurrentUser, 0},
    {platform::kHkeyClassesRoot, platform::kKeyWow64View64},
    {platform::kHkeyLocalMachine, platform::kKeyWow64View64},
}};

struct TypeRow {
    u32 m_native;
    u32 m_type;
    bool m_enumerated;
};

constexpr TypeRow kTypesRead[] = {
    {platform::kRegSz, QX_REG_STRING, true},
    {platform::kRegExpandSz, QX_REG_STRING, true},
    {platform::kRegDword, QX_REG_DWORD, true},
    {platform::kRegQword, QX_REG_QWORD, false},
    {platform::kRegBinary, QX_REG_BINARY, true},
    {platform::kRegNone, QX_REG_BINARY, false},
    {platform::kRegMultiSz, QX_REG_MULTI_STRING, true},
};

// By type; the 64-bit number cannot be written.
constexpr std::array<u32, 6> kTypesWritten{
    platform::kRegSz,     platform::kRegDword,    platform::kRegNone,
    platform::kRegBinary, platform::kRegExpandSz, platform::kRegMultiSz,
};

const TypeRow* FindType(u32 native) {
    for (const TypeRow& row : kTypesRead) {
        if (row.m_native == native) {
            return &row;
        }
    }
    return nullptr;
}

}  // namespace

RegistryRoot MapRoot(i32 root) {
    if (root < 0 || static_cast<std::size_t>(root) >= kRoots.size()) {
        return {platform::PredefinedKey(platform::kHkeyInvalid), 0};
    }
    const RootRow& row = kRoots[static_cast<std::size_t>(root)];
    return {platform::PredefinedKey(row.m_key), s_useRegistryViews != 0 ? row.m_view : 0};
}

bool MapTypeForWriting(u32 type, u32& native) {
    if (type >= kTypesWritten.size() || type == QX_REG_QWORD) {
        return false;
    }
    native = kTypesWritten[type];
    return true;
}

u32 MapTypeRead(u32 native) {
    const TypeRow* const row = FindType(native);
    return row != nullptr ? row->m_type : native;
}

void MapTypeEnumerated(u32 native, u32& type) {
    const TypeRow* const row = FindType(native);
    if (row != nullptr && row->m_enumerated) {
        type = row->m_type;
    }
}

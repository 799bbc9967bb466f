#include "config/ini_reg_key.h"

#include "config/ini_registry.h"

namespace qx::core {

CIniRegKey::~CIniRegKey() {
    for (const QXHandle handle : {m_keyEnum, m_valueEnum}) {
        if (handle != QX_INVALID_HANDLE) {
            IniRegistryCloseEnum(handle);
        }
    }
}

QXResult CIniRegKey::OpenKeyEnum() {
    return IniRegistryOpenKeyEnum(m_root, m_path.c_str(), &m_keyEnum);
}

QXResult CIniRegKey::EnumNextKey(wchar* name, u32* length) {
    return IniRegistryEnumNextKey(m_keyEnum, name, length);
}

QXResult CIniRegKey::OpenValueEnum() {
    return IniRegistryOpenValueEnum(m_root, m_path.c_str(), &m_valueEnum);
}

QXResult CIniRegKey::EnumNextValue(wchar* name, u32* length) {
    return IniRegistryEnumNextValue(m_valueEnum, name, length, nullptr, nullptr, nullptr);
}

CQXRefPtr<CRegKey> CIniRegKey::CreateKey(u32 root, const std::u16string& path) const {
    return CQXRefPtr<CRegKey>(new CIniRegKey(root, path));
}

QXResult CIniRegKey::GetValue(const std::u16string& name, u32* type, void* data,
                              u32* length) const {
    return IniRegistryGetValue(m_root, m_path.c_str(), name.c_str(), type, data, length);
}

QXResult CIniRegKey::SetValue(u32 root, const std::u16string& path, const std::u16string& name,
                              u32 type, const void* data, u32 length) {
    return IniRegistrySetValue(root, path.c_str(), name.c_str(), type, data, length);
}

}  // namespace qx::core

#include "config/native_reg_key.h"

#include <qxcore/registry.h>

namespace qx::core {

CNativeRegKey::~CNativeRegKey() {
    for (const QXHandle handle : {m_keyEnum, m_valueEnum}) {
        if (handle != QX_INVALID_HANDLE) {
            QXRegistryCloseEnum(handle);
        }
    }
}

QXResult CNativeRegKey::OpenKeyEnum() {
    return QXRegistryOpenKeyEnum(static_cast<i32>(m_root), m_path.c_str(), &m_keyEnum);
}

QXResult CNativeRegKey::EnumNextKey(wchar* name, u32* length) {
    return QXRegistryEnumNextKey(m_keyEnum, name, length);
}

QXResult CNativeRegKey::OpenValueEnum() {
    return QXRegistryOpenValueEnum(static_cast<i32>(m_root), m_path.c_str(), &m_valueEnum);
}

QXResult CNativeRegKey::EnumNextValue(wchar* name, u32* length) {
    u32 type;
    u32 dataLength = 0;
    return QXRegistryEnumNextValue(m_valueEnum, name, length, &type, nullptr, &dataLength);
}

CQXRefPtr<CRegKey> CNativeRegKey::CreateKey(u32 root, const std::u16string& path) const {
    return CQXRefPtr<CRegKey>(new CNativeRegKey(root, path));
}

QXResult CNativeRegKey::GetValue(const std::u16string& name, u32* type, void* data,
                                 u32* length) const {
    return QXRegistryGetValue(static_cast<i32>(m_root), m_path.c_str(), name.c_str(), type, data,
                              length);
}

QXResult CNativeRegKey::SetValue(u32 root, const std::u16string& path, const std::u16string& name,
                                 u32 type, const void* data, u32 length) {
    return QXRegistrySetValue(static_cast<i32>(root), path.c_str(), name.c_str(), type, data,
                              length);
}

}  // namespace qx::core

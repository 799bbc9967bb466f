#include "config/reg_key.h"

#include <qxcore/registry.h>

#include "config/ini_reg_key.h"
#include "config/native_reg_key.h"
#include "core/exception.h"

namespace qx::core {

namespace {

constexpr u32 kNameCapacity = 256;   // units, terminator included
constexpr u32 kDataCapacity = 2048;  // bytes

// Fetches a name by a step of an enumeration, unless one is still to be used.
template <typename Step>
bool FetchName(bool& pending, std::u16string& name, Step step) {
    if (!pending) {
        wchar buffer[kNameCapacity];
        u32 length = kNameCapacity;
        pending = QX_SUCCEEDED(step(buffer, &length));
        if (pending) {
            name.assign(buffer, length);
        }
    }
    return pending;
}

}  // namespace

CRegKey::CRegKey(u32 root, std::u16string path) : m_root(root), m_path(std::move(path)) {}

// A child that is its own parent is passed over: a section whose name ends in the separator has a
// child without a name, which below a root is the root.
void CRegKey::CopyTo(CRegKey& destination) {
    while (HasMoreKeys()) {
        const CQXRefPtr<CRegKey> child = NextKey();
        if (child->m_path != m_path) {
            child->CopyTo(destination);
        }
    }
    while (HasMoreValues()) {
        m_hasPendingValue = false;
        CopyValue(m_pendingValue, destination);
    }
}

bool CRegKey::HasMoreKeys() {
    if (m_keyEnum == QX_INVALID_HANDLE) {
        ThrowIfFailed(OpenKeyEnum());
    }
    return FetchName(m_hasPendingKey, m_pendingKey,
                     [this](wchar* name, u32* length) { return EnumNextKey(name, length); });
}

CQXRefPtr<CRegKey> CRegKey::NextKey() {
    if (!HasMoreKeys()) {
        throw EQXCoreException(QX_E_EOF);
    }
    m_hasPendingKey = false;
    return CreateKey(m_root, m_path.empty() ? m_pendingKey : m_path + u'\\' + m_pendingKey);
}

bool CRegKey::HasMoreValues() {
    if (m_valueEnum == QX_INVALID_HANDLE && QX_FAILED(OpenValueEnum())) {
        return false;
    }
    return FetchName(m_hasPendingValue, m_pendingValue,
                     [this](wchar* name, u32* length) { return EnumNextValue(name, length); });
}

// Text of the native store may come without a terminator: the zeros behind it are one.
void CRegKey::CopyValue(const std::u16string& name, CRegKey& destination) const {
    wchar data[kDataCapacity / sizeof(wchar) + 1] = {};
    u32 length = kDataCapacity;
    u32 type;
    if (QX_SUCCEEDED(GetValue(name, &type, data, &length))) {
        destination.SetValue(m_root, m_path, name, type, data, length);
    }
}

CQXRefPtr<CRegKey> CreateRegKey(u32 root, const std::u16string& path, u32 kind) {
    switch (kind) {
        case QX_REGSTORE_NATIVE:
            return CQXRefPtr<CRegKey>(new CNativeRegKey(root, path));
        case QX_REGSTORE_INI:
            return CQXRefPtr<CRegKey>(new CIniRegKey(root, path));
        default:
            throw EQXCoreException(QX_E_BADKEY);
    }
}

}  // namespace qx::core

// Each function opens a native key, works on it and closes it; to read or write one value is one
// operation of the platform. Only what allocates is under the guard.
#include <qxcore/registry.h>
#include <qxcore/result.h>

#include "config/registry_delete.h"
#include "config/registry_enum.h"
#include "config/registry_expand.h"
#include "config/registry_map.h"
#include "core/core_init.h"
#include "core/entry_guard.h"
#include "platform/registry.h"

namespace {

constexpr u32 kNoType = 0xFFFFFFFF;

u32 OpenKey(const RegistryRoot& root, const wchar* path, u32 access, platform::HKEY* key) {
    return platform::RegOpenKeyExW(root.m_key, path, 0, root.m_view | access, key);
}

// Names no list of who may use a new key, so the system gives it a default one.
struct DefaultSecurity {
    DefaultSecurity() {
        platform::InitializeSecurityDescriptor(&m_descriptor,
                                               platform::kSecurityDescriptorRevision);
        platform::SetSecurityDescriptorDacl(&m_descriptor, false, nullptr, false);
        m_attributes.nLength = sizeof m_attributes;
        m_attributes.lpSecurityDescriptor = &m_descriptor;
        m_attributes.bInheritHandle = 1;
    }

    platform::SECURITY_DESCRIPTOR m_descriptor;
    platform::SECURITY_ATTRIBUTES m_attributes;
};

// The key stays open if there is no memory for the record.
QXResult NewEnumeration(platform::HKEY key, QXHandle* handle) {
    return RunGuarded([&] {
        *handle = new QXRegistryEnum{key};
        return QX_S_OK;
    });
}

u32 OpenForEnumeration(i32 root, const wchar* path, QXHandle* handle, platform::HKEY* key) {
    *handle = QX_INVALID_HANDLE;
    return OpenKey(MapRoot(root), path, platform::kKeyRead, key);
}

}  // namespace

QXResult QXRegistryGetValue(int32_t root, const wchar* path, const wchar* name, uint32_t* type,
                            void* data, uint32_t* length) {
    const RegistryRoot native = MapRoot(root);
    const u32 capacity = length != nullptr ? *length : 0;
    const u32 error =
        platform::ReadRegistryValue(native.m_key, path, native.m_view, name, type, data, length);
    if (error != 0 || type == nullptr) {
        return QXResultFromNative(error);
    }
    const bool expand = *type == platform::kRegExpandSz;
    *type = MapTypeRead(*type);
    return expand ? ExpandValue(data, length != nullptr ? *length : 0, capacity) : QX_S_OK;
}

QXResult QXRegistrySetValue(int32_t root, const wchar* path, const wchar* name, uint32_t type,
                            const void* data, uint32_t length) {
    u32 native;
    if (!MapTypeForWriting(type, native)) {
        return QX_E_INVALIDARG;
    }
    const RegistryRoot key = MapRoot(root);
    const DefaultSecurity security;
    return QXResultFromNative(platform::WriteRegistryValue(
        key.m_key, path, key.m_view, s_isWinNT != 0 ? &security.m_attributes : nullptr, name,
        native, data, length));
}

QXResult QXRegistryDeleteKey(int32_t root, const wchar* path) {
    const RegistryRoot native = MapRoot(root);
    platform::HKEY key;
    if (OpenKey(native, path, platform::kKeyAllAccess, &key) != 0) {
        return QX_E_FAIL;
    }
    const QXResult errors =
        RunGuarded([&] { return static_cast<QXResult>(DeleteSubkeys(key, native.m_view)); });
    platform::RegCloseKey(key);
    if (errors == QX_E_OUTOFMEMORY) {
        return errors;
    }
    return errors |
           static_cast<QXResult>(platform::RegDeleteKeyExW(native.m_key, path, native.m_view, 0));
}

QXResult QXRegistryDeleteValue(int32_t root, const wchar* path, const wchar* name) {
    platform::HKEY key;
    u32 error = OpenKey(MapRoot(root), path, platform::kKeySetValue, &key);
    if (error == 0) {
        error = platform::RegDeleteValueW(key, name);
        platform::RegCloseKey(key);
    }
    return QXResultFromNative(error);
}

QXResult QXRegistryOpenKeyEnum(int32_t root, const wchar* path, QXHandle* handle) {
    platform::HKEY key;
    const u32 error = OpenForEnumeration(root, path, handle, &key);
    return error != 0 ? QX_E_FAIL : NewEnumeration(key, handle);
}

QXResult QXRegistryOpenValueEnum(int32_t root, const wchar* path, QXHandle* handle) {
    platform::HKEY key;
    const u32 error = OpenForEnumeration(root, path, handle, &key);
    return error != 0 ? QXResultFromNative(error) : NewEnumeration(key, handle);
}

// The position moves on before the step, so that a failing step is not repeated.
QXResult QXRegistryEnumNextKey(QXHandle handle, wchar* name, uint32_t* length) {
    QXRegistryEnum* const record = static_cast<QXRegistryEnum*>(handle);
    const u32 index = record->m_index++;
    platform::FILETIME written;
    return QXResultFromNative(platform::RegEnumKeyExW(record->m_key, index, name, length, nullptr,
                                                      nullptr, nullptr, &written));
}

QXResult QXRegistryEnumNextValue(QXHandle handle, wchar* name, uint32_t* nameLength, uint32_t* type,
                                 void* data, uint32_t* length) {
    QXRegistryEnum* const record = static_cast<QXRegistryEnum*>(handle);
    const u32 index = record->m_index++;
    u32 native = kNoType;
    const u32 error = platform::RegEnumValueW(record->m_key, index, name, nameLength, nullptr,
                                              &native, data, length);
    MapTypeEnumerated(native, *type);
    return QXResultFromNative(error);
}

QXResult QXRegistryCloseEnum(QXHandle handle) {
    QXRegistryEnum* const record = static_cast<QXRegistryEnum*>(handle);
    if (record == nullptr) {
        return QX_S_OK;
    }
    platform::RegCloseKey(record->m_key);
    delete record;
    return QX_S_OK;
}

#include "config/ini_registry.h"

#include <qxcore/file.h>
#include <qxcore/registry.h>
#include <qxcore/string.h>
#include <qxcore/system.h>

#include <array>
#include <atomic>
#include <memory>

#include "config/ini_file.h"
#include "config/ini_iterators.h"
#include "core/entry_guard.h"
#include "sync/mutex_holder.h"

namespace registry {
namespace {

constexpr char16_t kFileName[] = u"qxregistry.ini";
constexpr u32 kUserNameCapacity = 127;

constinit std::atomic<IniFile*> s_pIniFile{nullptr};
constinit QXHandle s_pInitLock = nullptr;

// By root number.
constexpr std::array<const char16_t*, 5> kRootNames{
    u"QX_HKEY_CLASSES",    u"QX_HKEY_CONFIG",    u"QX_HKEY_USER",
    u"QX_HKEY_CLASSES_64", u"QX_HKEY_CONFIG_64",
};

IniFile& EnsureOpen() {
    IniFile* file = s_pIniFile.load(std::memory_order_acquire);
    if (file == nullptr) {
        const MutexHolder holder(s_pInitLock);
        file = s_pIniFile.load(std::memory_order_relaxed);
        if (file == nullptr) {
            file = new IniFile(kFileName);
            s_pIniFile.store(file, std::memory_order_release);
        }
    }
    return *file;
}

std::u16string UserName() {
    wchar name[kUserNameCapacity];
    ThrowIfFailed(QXGetUserName(name, kUserNameCapacity));
    return name;
}

// The operations' common form: on the open file, under the guard.
template <typename Body>
QXResult RunOnFile(Body&& body) noexcept {
    return RunGuarded([&] { return body(EnsureOpen()); });
}

template <typename Iterator>
QXResult OpenEnum(u32 root, const wchar* path, QXHandle* handle) {
    *handle = QX_INVALID_HANDLE;
    return RunOnFile([&](IniFile& file) {
        *handle = static_cast<IniFileIteratorBase*>(
            new Iterator(file, IniRegistrySectionName(root, path)));
        return QX_S_OK;
    });
}

IniFileIteratorBase* IteratorOf(QXHandle handle) {
    return static_cast<IniFileIteratorBase*>(handle);
}

QXResult StoreName(const std::u16string& next, wchar* name, u32* length) {
    if (*length <= next.size()) {
        next.copy(name, *length);
        return QX_E_BUFFERTOOSMALL;
    }
    *length = static_cast<u32>(next.size());
    name[next.copy(name, next.size())] = u'\0';
    return QX_S_OK;
}

QXResult ReadText(IniFile& file, const std::u16string& section, const wchar* name, void* data,
                  u32* length) {
    wchar* const text = static_cast<wchar*>(data);
    const QXResult result = file.GetString(section.c_str(), name, text);
    if (result == QX_S_OK) {
        *length = static_cast<u32>(QXStrLenW(text) * sizeof(wchar) + sizeof(wchar));
    }
    return result;
}

}  // namespace
}  // namespace registry

using namespace registry;

// An invalid handle is found out by the first who takes it.
void IniRegistryInit() noexcept {
    QXMutexCreate("registry::s_pInitLock", 0, &s_pInitLock);
}

void IniRegistryTerm() noexcept {
    delete s_pIniFile.exchange(nullptr);
    if (s_pInitLock != QX_INVALID_HANDLE) {
        QXMutexDestroy(s_pInitLock);
    }
    s_pInitLock = nullptr;
}

std::u16string IniRegistrySectionName(u32 root, const wchar* path) {
    if (root >= kRootNames.size()) {
        throw EQXCoreException(QX_E_INVALIDARG);
    }
    std::u16string name = kRootNames[root];
    if (root == QX_HKEY_USER) {
        name += u'\\' + UserName();
    }
    if (QXStrLenW(path) != 0) {
        name.append(u"\\").append(path);
    }
    return name;
}

QXResult IniRegistryDeleteFile() {
    if (s_pIniFile.load(std::memory_order_acquire) == nullptr) {
        return QX_S_OK;
    }
    const QXResult result = QXFileDelete(kFileName);
    return result != QX_E_NOTFOUND ? result : QX_S_OK;
}

QXResult IniRegistryOpenKeyEnum(u32 root, const wchar* path, QXHandle* handle) {
    return OpenEnum<IniFileSetIterator>(root, path, handle);
}

QXResult IniRegistryOpenValueEnum(u32 root, const wchar* path, QXHandle* handle) {
    return OpenEnum<IniFileKeyIterator>(root, path, handle);
}

QXResult IniRegistryEnumNextKey(QXHandle handle, wchar* name, u32* length) {
    return RunOnFile([&](IniFile&) {
        IniFileIteratorBase& iterator = *IteratorOf(handle);
        return iterator.HasNext() ? StoreName(iterator.Next(), name, length) : QX_E_EOF;
    });
}

QXResult IniRegistryEnumNextValue(QXHandle handle, wchar* name, u32* length, u32* type, void* data,
                                  u32* dataLength) {
    return RunOnFile([&](IniFile& file) {
        IniFileIteratorBase& iterator = *IteratorOf(handle);
        if (!iterator.HasNext()) {
            return QX_E_EOF;
        }
        const std::u16string& next = iterator.Next();
        const QXResult named = StoreName(next, name, length);
        if (type != nullptr) {
            *type = QX_REG_STRING;
        }
        if (data == nullptr) {
            return named;
        }
        // The value's text says more than a name that was cut.
        const QXResult read = ReadText(file, iterator.GetName(), next.c_str(), data, dataLength);
        return read == QX_S_OK ? read : QX_E_FAIL;
    });
}

QXResult IniRegistryCloseEnum(QXHandle handle) {
    return RunOnFile([&](IniFile&) {
        delete IteratorOf(handle);
        return QX_S_OK;
    });
}

QXResult IniRegistryGetValue(u32 root, const wchar* path, const wchar* name, u32* type, void* data,
                             u32* length) {
    return RunOnFile([&](IniFile& file) {
        const std::u16string section = IniRegistrySectionName(root, path);
        const QXResult result = ReadText(file, section, name, data, length);
        if (result == QX_S_OK) {
            *type = QX_REG_STRING;
        }
        return result;
    });
}

QXResult IniRegistrySetValue(u32 root, const wchar* path, const wchar* name, u32 type,
                             const void* data, [[maybe_unused]] u32 length) {
    return RunOnFile([&](IniFile& file) {
        if (type != QX_REG_STRING) {
            return QX_E_NOTIMPL;
        }
        const std::u16string section = IniRegistrySectionName(root, path);
        const i32 done =
            file.SetString(section.c_str(), name, static_cast<const wchar*>(data), true);
        return done == 0 ? QX_S_OK : QX_E_FAIL;
    });
}

#include "component/factory_manager.h"

#include <qxcore/guid.h>
#include <qxcore/module.h>
#include <qxcore/registry.h>
#include <qxcore/string.h>

#include <cstring>
#include <utility>

#include "core/entry.h"
#include "core/exception.h"
#include "sync/mutex_holder.h"

namespace {

constexpr u32 kPathBytes = 520;
constexpr std::size_t kKeyUnits = 256;

// An interface that is released unless it is passed on.
class OwnedInterface {
  public:
    OwnedInterface() = default;
    ~OwnedInterface() {
        if (m_object != nullptr) {
            Get()->Release();
        }
    }
    OwnedInterface(const OwnedInterface&) = delete;
    OwnedInterface& operator=(const OwnedInterface&) = delete;

    void** Out() { return &m_object; }
    IQXUnknown* Get() const { return static_cast<IQXUnknown*>(m_object); }
    void* PassOn() { return std::exchange(m_object, nullptr); }

  private:
    void* m_object = nullptr;
};

// The path of the library that the registry names for a class. Whatever fails on the way: the class
// is not registered.
void ReadLibraryPath(const GUID* classID, wchar* path) {
    wchar classText[QX_GUID_TEXT_SIZE];
    QXResult result = QXComStringFromGUID(classID, classText, QX_GUID_TEXT_SIZE);
    wchar key[kKeyUnits];
    QXStrCpyW(key, u"CLSID\\");
    QXStrCatW(key, classText);
    QXStrCatW(key, u"\\InprocServer32");
    if (QX_SUCCEEDED(result)) {
        // The type is asked for so that references to the environment are expanded; what it says is
        // not looked at.
        u32 type = 0;
        u32 bytes = kPathBytes;
        result = QXRegistryGetValue(QX_HKEY_CLASSES_64, key, u"", &type, path, &bytes);
    }
    if (QX_FAILED(result)) {
        throw EQXCoreException(QX_E_NOTREGISTERED);
    }
}

QXHandle OpenLibrary(const GUID* classID) {
    // Cleared, and with a unit to spare: what the registry holds may lack its terminator.
    wchar path[kPathBytes / sizeof(wchar) + 1] = {};
    ReadLibraryPath(classID, path);
    QXHandle library = QX_INVALID_HANDLE;
    ThrowIfFailed(QXModuleLibOpen(s_moduleToken, path, &library));
    return library;
}

// A failure leaves the library open and no interface, whatever the library stored.
void AskLibrary(QXHandle library, const GUID* classID, const GUID* interfaceID, void** result) {
    void* symbol = nullptr;
    ThrowIfFailed(QXLibGetSymbol(library, u"DllGetClassObject", &symbol));
    const auto getClassObject = reinterpret_cast<QXGetClassObjectFunction>(symbol);
    const QXResult answer = getClassObject(classID, interfaceID, result);
    if (QX_FAILED(answer)) {
        *result = nullptr;
        throw EQXCoreException(answer);
    }
}

}  // namespace

void* CQXFactoryManager::GetClassObject(const GUID* classID, const GUID* interfaceID) {
    ClassKey key;
    std::memcpy(key.data(), classID, key.size());
    MutexHolder hold(m_mapMutex);
    const CQXRefPtr<CQXFactoryData> cached = FindCached(key);
    if (!cached) {
        return LoadClassObject(key, classID, interfaceID);
    }
    void* found = nullptr;
    ThrowIfFailed(cached->m_pFactory->QueryInterface(interfaceID, &found));
    return found;
}

CQXRefPtr<CQXFactoryData> CQXFactoryManager::FindCached(const ClassKey& key) const {
    const auto entry = m_factoryMap.find(key);
    return entry != m_factoryMap.end() ? entry->second : CQXRefPtr<CQXFactoryData>();
}

void* CQXFactoryManager::LoadClassObject(const ClassKey& key, const GUID* classID,
                                         const GUID* interfaceID) {
    const QXHandle library = OpenLibrary(classID);
    // The record closes the library, so it must outlive the interface.
    CQXRefPtr<CQXFactoryData> record;
    OwnedInterface factory;
    AskLibrary(library, classID, interfaceID, factory.Out());
    record = CQXRefPtr<CQXFactoryData>(new CQXFactoryData(factory.Get(), library));
    m_factoryMap[key] = record;
    return factory.PassOn();
}

// The entries are taken out first: a factory that comes back here while it is released finds the
// cache whole.
void CQXFactoryManager::Flush() {
    MutexHolder hold(m_mapMutex);
    FactoryMap entries;
    entries.swap(m_factoryMap);
    entries.clear();
}

void CQXFactoryManager::TryFlush() {
    if (QX_SUCCEEDED(QXMutexTryAcquire(m_mapMutex))) {
        Flush();
        QXMutexRelease(m_mapMutex);
    }
}

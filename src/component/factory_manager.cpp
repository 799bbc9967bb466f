#include "component/factory_manager.h"

#include <qxcore/guid.h>
#include <qxcore/module.h>
#include <qxcore/registry.h>
#include <qxcore/string.h>

#include <cstring>
#include <utility>

#include "core/entry.h"
#include "core/exception.h"
#include "platform/cancellation.h"
#include "sync/mutex_holder.h"

namespace {

constexpr u32 kPathBytes = 520;
constexpr std::size_t kKeyUnits = 256;

// An interface that is released unless it is passed on.
class OwnedInterface {
  public:
    explicit OwnedInterface(void* object) : m_object(object) {}
    ~OwnedInterface() {
        if (m_object != nullptr) {
            Get()->Release();
        }
    }
    OwnedInterface(const OwnedInterface&) = delete;
    OwnedInterface& operator=(const OwnedInterface&) = delete;

    IQXUnknown* Get() const { return static_cast<IQXUnknown*>(m_object); }
    void* PassOn() { return std::exchange(m_object, nullptr); }

  private:
    void* m_object;
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

// A failure leaves the library open, and what the library stored is not looked at.
void* AskLibrary(QXHandle library, const GUID* classID, const GUID* interfaceID) {
    void* symbol = nullptr;
    ThrowIfFailed(QXLibGetSymbol(library, u"DllGetClassObject", &symbol));
    const auto getClassObject = reinterpret_cast<QXGetClassObjectFunction>(symbol);
    void* factory = nullptr;
    ThrowIfFailed(getClassObject(classID, interfaceID, &factory));
    return factory;
}

// Nobody else can take a reference: the cache has let go of the record under its lock. It goes
// here. NOLINTNEXTLINE(performance-unnecessary-value-param)
QXResult Drop(CQXRefPtr<CQXFactoryData> record) {
    return record && record->m_refCount == 1 ? record->ReleaseFactory() : QX_S_OK;
}

}  // namespace

void* CQXFactoryManager::GetClassObject(const GUID* classID, const GUID* interfaceID) {
    const platform::CancellationOff foreignCodeRuns;
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
    OwnedInterface factory(AskLibrary(library, classID, interfaceID));
    // The entry comes first, and may stay without a record: a record closes the library, which must
    // not happen before the interface is released.
    CQXRefPtr<CQXFactoryData>& entry = m_factoryMap[key];
    entry = CQXRefPtr<CQXFactoryData>(new CQXFactoryData(factory.Get(), library));
    return factory.PassOn();
}

// The entries are taken out first: a factory that comes back here while it is released finds the
// cache whole.
QXResult CQXFactoryManager::Flush() {
    const platform::CancellationOff foreignCodeRuns;
    MutexHolder hold(m_mapMutex);
    FactoryMap entries;
    entries.swap(m_factoryMap);
    QXResult overall = QX_S_OK;
    for (auto& [key, record] : entries) {
        const QXResult result = Drop(std::move(record));
        overall = QX_FAILED(result) ? result : overall;
    }
    return overall;
}

void CQXFactoryManager::TryFlush() {
    if (m_mapMutex != QX_INVALID_HANDLE && QX_SUCCEEDED(QXMutexTryAcquire(m_mapMutex))) {
        Flush();
        QXMutexRelease(m_mapMutex);
    }
}

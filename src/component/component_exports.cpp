#include <qxcore/component.h>
#include <qxcore/registry.h>
#include <qxcore/string.h>

#include "core/client_data.h"
#include "core/entry_guard.h"
#include "core/global_data.h"

namespace {

constexpr std::size_t kProgramKeyUnits = 264;
constexpr u32 kClassTextBytes = 78;

IQXUnknown* ObjectOf(void* object) {
    return static_cast<IQXUnknown*>(object);
}

}  // namespace

QXResult QXComGetClassObject(const GUID* classID, const GUID* interfaceID, void** result) {
    *result = nullptr;
    return RunGuarded([&] {
        *result =
            CQXGlobalData::m_clientData->m_factoryManager.GetClassObject(classID, interfaceID);
        return QX_S_OK;
    });
}

QXResult QXComCreateObject(const GUID* classID, void* outer, const GUID* interfaceID,
                           void** result) {
    void* found = nullptr;
    QXResult outcome = QXComGetClassObject(classID, &QX_IID_CLASS_FACTORY, &found);
    auto* const factory = static_cast<IQXClassFactory*>(found);
    if (QX_SUCCEEDED(outcome)) {
        outcome = factory->CreateInstance(outer, interfaceID, result);
    }
    if (factory != nullptr) {
        factory->Release();
    }
    return outcome;
}

QXResult QXComClassIDFromProgID(const wchar* programID, GUID* classID) {
    wchar key[kProgramKeyUnits];
    QXStrCpyW(key, programID);
    QXStrCatW(key, u"\\CLSID");
    // Cleared, and with a unit to spare: what the registry holds may lack its terminator.
    wchar text[kClassTextBytes / sizeof(wchar) + 1] = {};
    u32 type = 0;
    u32 bytes = kClassTextBytes;
    const QXResult result = QXRegistryGetValue(QX_HKEY_CLASSES_64, key, u"", &type, text, &bytes);
    if (QX_FAILED(result)) {
        return result == QX_E_NOTFOUND ? QX_E_NOTREGISTERED : result;
    }
    return QXComGUIDFromString(text, classID);
}

QXResult QXComCreateObjectByProgID(const wchar* programID, void* outer, const GUID* interfaceID,
                                   void** result) {
    GUID classID;
    const QXResult found = QXComClassIDFromProgID(programID, &classID);
    return QX_FAILED(found) ? found : QXComCreateObject(&classID, outer, interfaceID, result);
}

QXResult QXComFlushFactoryCache() {
    return RunGuarded([] { return CQXGlobalData::m_clientData->m_factoryManager.Flush(); });
}

QXResult IQXUnknown_QueryInterface(void* object, const GUID* interfaceID, void** result) {
    return ObjectOf(object)->QueryInterface(interfaceID, result);
}

uint32_t IQXUnknown_AddRef(void* object) {
    return ObjectOf(object)->AddRef();
}

uint32_t IQXUnknown_Release(void* object) {
    return ObjectOf(object)->Release();
}

// Finds class factories and caches them.
#ifndef QX_COMPONENT_FACTORY_MANAGER_H
#define QX_COMPONENT_FACTORY_MANAGER_H

#include <array>
#include <map>

#include "component/factory_data.h"
#include "platform/types.h"
#include "sync/owned_mutex.h"

class CQXFactoryManager {
  public:
    CQXFactoryManager() = default;
    CQXFactoryManager(const CQXFactoryManager&) = delete;
    CQXFactoryManager& operator=(const CQXFactoryManager&) = delete;

    // The interface with one reference for the caller. Throws the code of any failure.
    void* GetClassObject(const GUID* classID, const GUID* interfaceID);

    // Releases all factories and closes their libraries, whatever any of them throws. QX_E_FAIL if
    // one did.
    QXResult Flush();

    // The same, unless another thread is at work here.
    void TryFlush();

  private:
    // Ordered byte by byte, unlike QXComCompareGUID.
    using ClassKey = std::array<u8, sizeof(GUID)>;
    using FactoryMap = std::map<ClassKey, CQXRefPtr<CQXFactoryData>>;

    CQXRefPtr<CQXFactoryData> FindCached(const ClassKey& key) const;
    void* LoadClassObject(const ClassKey& key, const GUID* classID, const GUID* interfaceID);

    // The mutex stands behind what it guards, so that it is destroyed first. It is recursive: a
    // library that is being asked may come back for another class.
    FactoryMap m_factoryMap;
    OwnedMutex m_mapMutex{"CQXFactoryManager::m_mapMutex", 0};
};

#endif

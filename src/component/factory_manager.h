// Finds class factories and caches them.
#ifndef QX_COMPONENT_FACTORY_MANAGER_H
#define QX_COMPONENT_FACTORY_MANAGER_H

#include <array>
#include <map>

#include "component/factory_data.h"
#include "platform/types.h"

class CQXFactoryManager {
  public:
    CQXFactoryManager();
    ~CQXFactoryManager();
    CQXFactoryManager(const CQXFactoryManager&) = delete;
    CQXFactoryManager& operator=(const CQXFactoryManager&) = delete;

    // The interface with one reference for the caller. Throws the code of any failure.
    void* GetClassObject(const GUID* classID, const GUID* interfaceID);

    // Releases all factories and closes their libraries.
    void Flush();

    // The same, unless another thread is at work here.
    void TryFlush();

  private:
    // Ordered byte by byte, unlike QXComCompareGUID.
    using ClassKey = std::array<u8, sizeof(GUID)>;
    using FactoryMap = std::map<ClassKey, CQXRefPtr<CQXFactoryData>>;

    CQXRefPtr<CQXFactoryData> FindCached(const ClassKey& key) const;
    void* LoadClassObject(const ClassKey& key, const GUID* classID, const GUID* interfaceID);

    // Recursive: a library that is being asked may come back for another class.
    QXHandle m_mapMutex;
    FactoryMap m_factoryMap;
};

#endif

// The one place that knows every manager: the library is put together here.
#include "core/global_data.h"

#include <qxcore/mutex.h>

#include <memory>

#include "component/module_manager.h"
#include "core/client_data.h"
#include "core/exception.h"
#include "sync/lock_stat_manager.h"
#include "sync/mutex_provider.h"
#include "system/local_host.h"
#include "system/my_addresses.h"

constinit IMutexProvider* CQXGlobalData::m_mutexProvider = nullptr;
constinit CQXLockStatManager* CQXGlobalData::m_lockStatManager = nullptr;
constinit QXHandle* CQXGlobalData::m_debugMutex = nullptr;
constinit CQXModuleManager* CQXGlobalData::m_moduleManager = nullptr;
constinit CQXClientData* CQXGlobalData::m_clientData = nullptr;

namespace {

template <typename Object>
void Destroy(Object*& object) {
    delete object;
    object = nullptr;
}

void ConstructDebugMutex() {
    auto cell = std::make_unique<QXHandle>();
    ThrowIfFailed(QXMutexCreate("CQXGlobalData::m_debugMutex", QX_MUTEX_NOSTATS, cell.get()));
    CQXGlobalData::m_debugMutex = cell.release();
}

void DestroyDebugMutex() {
    if (CQXGlobalData::m_debugMutex != nullptr) {
        QXMutexDestroy(*CQXGlobalData::m_debugMutex);
        Destroy(CQXGlobalData::m_debugMutex);
    }
}

}  // namespace

void QXGlobalsConstruct() {
    CQXGlobalData::m_mutexProvider = new qx::core::CQXMutexProvider;
    CQXGlobalData::m_lockStatManager = new CQXLockStatManager;
    ConstructDebugMutex();
    CQXGlobalData::m_moduleManager = new CQXModuleManager;
    CQXGlobalData::m_clientData = new CQXClientData;
}

// The statistics manager goes last: measured mutexes live in it, also after the provider is gone.
void QXGlobalsDestroy() {
    ReleaseLocalHostCache();
    ReleaseMyAddresses();
    Destroy(CQXGlobalData::m_clientData);
    Destroy(CQXGlobalData::m_moduleManager);
    DestroyDebugMutex();
    Destroy(CQXGlobalData::m_mutexProvider);
    Destroy(CQXGlobalData::m_lockStatManager);
}

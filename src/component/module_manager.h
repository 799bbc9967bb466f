// The modules that are marked as initialised.
#ifndef QX_COMPONENT_MODULE_MANAGER_H
#define QX_COMPONENT_MODULE_MANAGER_H

#include <qxcore/module.h>

#include <set>

#include "platform/types.h"
#include "sync/owned_mutex.h"

class CQXModuleManager {
  public:
    CQXModuleManager() = default;
    CQXModuleManager(const CQXModuleManager&) = delete;
    CQXModuleManager& operator=(const CQXModuleManager&) = delete;

    void Mark(QXModuleToken token);
    void Unmark(QXModuleToken token);
    bool IsMarked(QXModuleToken token);

    // Keep other threads out while the process forks.
    void EnterForFork();
    void LeaveAfterFork();

  private:
    // Behind what it guards, so that it is destroyed first.
    std::set<std::uintptr_t> m_moduleSet;
    OwnedMutex m_setLock{"CQXModuleManager::m_setLock", 0};
};

#endif

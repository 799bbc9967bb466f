// Child processes.
#ifndef QX_PROCESS_PROCESS_MANAGER_H
#define QX_PROCESS_PROCESS_MANAGER_H

#include "sync/owned_mutex.h"

class CQXProcessManager {
  public:
    CQXProcessManager() = default;
    CQXProcessManager(const CQXProcessManager&) = delete;
    CQXProcessManager& operator=(const CQXProcessManager&) = delete;

  private:
    OwnedMutex m_setMutex{"CQXProcessManager::m_setMutex", 0};
};

#endif

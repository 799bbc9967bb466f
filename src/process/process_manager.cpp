#include "process/process_manager.h"

#include "sync/owned_mutex.h"

CQXProcessManager::CQXProcessManager() {
    QXMutexCreate("CQXProcessManager::m_setMutex", 0, &m_setMutex);
}

CQXProcessManager::~CQXProcessManager() {
    DestroyOwnedMutex(m_setMutex);
}

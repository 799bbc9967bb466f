#include "process/thread_manager.h"

#include "sync/owned_mutex.h"

CQXThreadManager::CQXThreadManager() {
    QXMutexCreate("CQXThreadManager::m_mapMutex", 0, &m_mapMutex);
    CQXRefPtr<CQXThreadData> self(new CQXThreadData(platform::GetCurrentThread()));
    m_threadMap.emplace(platform::GetCurrentThreadId(), self);
}

CQXThreadManager::~CQXThreadManager() {
    DestroyOwnedMutex(m_mapMutex);
}

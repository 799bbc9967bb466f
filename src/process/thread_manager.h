// Threads by their numeric ids.
#ifndef QX_PROCESS_THREAD_MANAGER_H
#define QX_PROCESS_THREAD_MANAGER_H

#include <map>

#include "core/ref_counted.h"
#include "platform/threads.h"
#include "sync/owned_mutex.h"

// One thread on record.
class CQXThreadData : public CQXCoreRefCounted {
  public:
    explicit CQXThreadData(platform::HANDLE thread) : m_hThread(thread) {}

    platform::HANDLE m_hThread;
};

class CQXThreadManager {
  public:
    // Puts the calling thread on record.
    CQXThreadManager();
    CQXThreadManager(const CQXThreadManager&) = delete;
    CQXThreadManager& operator=(const CQXThreadManager&) = delete;

  private:
    // The mutex stands behind what it guards, so that it is destroyed first.
    std::map<u32, CQXRefPtr<CQXThreadData>> m_threadMap;
    OwnedMutex m_mapMutex{"CQXThreadManager::m_mapMutex", 0};
};

#endif

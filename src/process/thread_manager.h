// Threads by their numeric ids.
#ifndef QX_PROCESS_THREAD_MANAGER_H
#define QX_PROCESS_THREAD_MANAGER_H

#include <qxcore/mutex.h>

#include <map>

#include "core/ref_counted.h"
#include "platform/threads.h"

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
    ~CQXThreadManager();
    CQXThreadManager(const CQXThreadManager&) = delete;
    CQXThreadManager& operator=(const CQXThreadManager&) = delete;

  private:
    QXHandle m_mapMutex;
    std::map<u32, CQXRefPtr<CQXThreadData>> m_threadMap;
};

#endif

// Threads by their numeric ids.
#ifndef QX_PROCESS_THREAD_MANAGER_H
#define QX_PROCESS_THREAD_MANAGER_H

#include <atomic>
#include <map>

#include "core/ref_counted.h"
#include "platform/threads.h"
#include "sync/owned_mutex.h"

// One thread on record. The handle is closed by those who join or detach the thread.
class CQXThreadData : public CQXCoreRefCounted {
  public:
    explicit CQXThreadData(platform::HANDLE thread) : m_hThread(thread) {}

    platform::HANDLE m_hThread;
    // Set under the manager's mutex, read without it.
    std::atomic<bool> m_bDetached{false};  // joined or detached
    std::atomic<bool> m_bFinished{false};  // its routine has returned
};

// A thread is on record until it was given up and its routine has returned.
class CQXThreadManager {
  public:
    using ThreadMap = std::map<u32, CQXRefPtr<CQXThreadData>>;

    // Puts the calling thread on record.
    CQXThreadManager();
    CQXThreadManager(const CQXThreadManager&) = delete;
    CQXThreadManager& operator=(const CQXThreadManager&) = delete;

    // An entry for AddThread, which then has nothing to allocate: it works when the thread is
    // running already.
    static ThreadMap::node_type NewEntry();

    // The entry of a thread that had the same id and that nobody gave up is replaced; its handle
    // stays open.
    void AddThread(ThreadMap::node_type entry, u32 id, platform::HANDLE thread);

    // Empty if there is none.
    CQXRefPtr<CQXThreadData> FindThread(u32 id);

    // The thread must be on record.
    void MarkDetached(u32 id);
    void MarkFinished(u32 id);

    // Held round a fork, so that the child finds the map whole.
    QXHandle MapMutex() const { return m_mapMutex; }

  private:
    using Flag = std::atomic<bool> CQXThreadData::*;
    void Mark(u32 id, Flag own, Flag other);

    // The mutex stands behind what it guards, so that it is destroyed first.
    ThreadMap m_threadMap;
    OwnedMutex m_mapMutex{"CQXThreadManager::m_mapMutex", 0};
};

#endif

// The process-wide record of measured mutexes. It outlives the mutex provider.
#ifndef QX_SYNC_LOCK_STAT_MANAGER_H
#define QX_SYNC_LOCK_STAT_MANAGER_H

#include <map>
#include <utility>

#include "sync/mutex.h"
#include "sync/owned_mutex.h"

// What a row of the report says of its mutex. The numbers order the rows.
enum LockKind : i32 {
    kLiveMutex = 0,
    kRetiredMutex = 4,  // destroyed by its owner, whose reference the entry holds
};

class CQXLockStatManager {
  public:
    CQXLockStatManager() = default;
    ~CQXLockStatManager();
    CQXLockStatManager(const CQXLockStatManager&) = delete;
    CQXLockStatManager& operator=(const CQXLockStatManager&) = delete;

    // Takes no reference. A mutex for which there is no memory is missing from the reports.
    void RecordMutex(i32 kind, IMutex* mutex) noexcept;
    // Drops no reference.
    void ForgetMutex(i32 kind, IMutex* mutex) noexcept;
    void MoveMutex(i32 newKind, i32 oldKind, IMutex* mutex) noexcept;

    QXResult DumpStats(const char* title, const wchar* path) noexcept;
    void ResetStatsAll();

  private:
    using Key = std::pair<i32, IMutex*>;

    // Exempt from the statistics that it guards.
    OwnedMutex m_mutex{"CQXLockStatManager::m_mutex", QX_MUTEX_NOSTATS};
    std::map<Key, IMutex*> m_entries;
};

#endif

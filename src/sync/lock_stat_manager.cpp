#include "sync/lock_stat_manager.h"

#include "core/entry_guard.h"
#include "sync/lock_stat_report.h"
#include "sync/mutex_holder.h"

// Live mutexes go too: a handle that was never destroyed dies here.
CQXLockStatManager::~CQXLockStatManager() {
    while (!m_entries.empty()) {
        const auto [kind, mutex] = m_entries.begin()->first;
        ForgetMutex(kind, mutex);
        DropReference(mutex);
    }
}

void CQXLockStatManager::RecordMutex(i32 kind, IMutex* mutex) noexcept {
    RunGuarded([&] {
        MutexHolder hold(m_mutex);
        m_entries[{kind, mutex}] = mutex;
        return QX_S_OK;
    });
}

void CQXLockStatManager::ForgetMutex(i32 kind, IMutex* mutex) noexcept {
    RunGuarded([&] {
        MutexHolder hold(m_mutex);
        m_entries.erase({kind, mutex});
        return QX_S_OK;
    });
}

// Under one hold: nobody sees the mutex twice, or a reset frees it in between. An entry that is
// there is moved without an allocation, so that a mutex on record is never lost.
void CQXLockStatManager::MoveMutex(i32 newKind, i32 oldKind, IMutex* mutex) noexcept {
    RunGuarded([&] {
        MutexHolder hold(m_mutex);
        auto entry = m_entries.extract({oldKind, mutex});
        if (entry.empty()) {
            m_entries[{newKind, mutex}] = mutex;
        } else {
            entry.key().first = newKind;
            m_entries.insert(std::move(entry));
        }
        return QX_S_OK;
    });
}

QXResult CQXLockStatManager::DumpStats(const char* title, const wchar* path) noexcept {
    return RunGuarded([&] {
        MutexHolder hold(m_mutex);
        LockStatReport report(title, path);
        const QXResult result = report.WriteHead();
        for (const auto& [key, mutex] : m_entries) {
            report.WriteRow(key.first, mutex);
        }
        report.WriteTail();
        return result;
    });
}

void CQXLockStatManager::ResetStatsAll() {
    MutexHolder hold(m_mutex);
    for (auto entry = m_entries.begin(); entry != m_entries.end();) {
        IMutex* const mutex = entry->second;
        if (entry->first.first == kRetiredMutex) {
            entry = m_entries.erase(entry);
            DropReference(mutex);
        } else {
            mutex->ResetStats();
            ++entry;
        }
    }
}

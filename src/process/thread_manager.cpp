#include "process/thread_manager.h"

#include "sync/mutex_holder.h"

CQXThreadManager::CQXThreadManager() {
    AddThread(NewEntry(), platform::GetCurrentThreadId(), platform::GetCurrentThread());
}

CQXThreadManager::ThreadMap::node_type CQXThreadManager::NewEntry() {
    ThreadMap single;
    single.emplace(0, CQXRefPtr<CQXThreadData>(new CQXThreadData(nullptr)));
    return single.extract(single.begin());
}

void CQXThreadManager::AddThread(ThreadMap::node_type entry, u32 id, platform::HANDLE thread) {
    entry.key() = id;
    entry.mapped()->m_hThread = thread;
    MutexHolder hold(m_mapMutex);
    auto result = m_threadMap.insert(std::move(entry));
    if (!result.inserted) {
        result.position->second = std::move(result.node.mapped());
    }
}

CQXRefPtr<CQXThreadData> CQXThreadManager::FindThread(u32 id) {
    MutexHolder hold(m_mapMutex);
    const auto entry = m_threadMap.find(id);
    return entry != m_threadMap.end() ? entry->second : CQXRefPtr<CQXThreadData>();
}

void CQXThreadManager::MarkDetached(u32 id) {
    Mark(id, &CQXThreadData::m_bDetached, &CQXThreadData::m_bFinished);
}

void CQXThreadManager::MarkFinished(u32 id) {
    Mark(id, &CQXThreadData::m_bFinished, &CQXThreadData::m_bDetached);
}

void CQXThreadManager::Mark(u32 id, Flag own, Flag other) {
    MutexHolder hold(m_mapMutex);
    const CQXRefPtr<CQXThreadData> record = FindThread(id);
    // The number is in the table, as callers know.
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage)
    const bool last = record.Get()->*other;
    record.Get()->*own = true;
    if (last) {
        m_threadMap.erase(id);
    }
}

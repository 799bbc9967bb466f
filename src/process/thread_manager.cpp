#include "process/thread_manager.h"

CQXThreadManager::CQXThreadManager() {
    const CQXRefPtr<CQXThreadData> self(new CQXThreadData(platform::GetCurrentThread()));
    m_threadMap.emplace(platform::GetCurrentThreadId(), self);
}

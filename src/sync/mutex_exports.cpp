// A mutex's handle is its address. The operations are virtual calls without a guard or a test, and
// their result is returned as it stands.
#include "core/entry_guard.h"
#include "core/global_data.h"
#include "sync/lock_stat_manager.h"
#include "sync/mutex.h"

namespace {

IMutex* MutexOf(QXHandle handle) {
    return static_cast<IMutex*>(handle);
}

bool IsMeasured(IMutex* mutex) {
    return (mutex->GetFlags() & QX_MUTEX_STATS) != 0;
}

}  // namespace

QXResult QXMutexCreate(const char* name, uint32_t flags, QXHandle* out) {
    *out = QX_INVALID_HANDLE;
    return RunGuarded([&] {
        const std::string copy = name != nullptr ? name : "";
        IMutex* mutex = nullptr;
        const QXResult result =
            CQXGlobalData::m_mutexProvider->CreateMutex(copy.c_str(), flags, &mutex);
        if (QX_FAILED(result)) {
            return result;
        }
        if (IsMeasured(mutex)) {
            CQXGlobalData::m_lockStatManager->RecordMutex(kLiveMutex, mutex);
        }
        *out = mutex;
        return QX_S_OK;
    });
}

QXResult QXMutexDestroy(QXHandle mutex) {
    return RunGuarded([&] {
        if (IsMeasured(MutexOf(mutex))) {
            CQXGlobalData::m_lockStatManager->MoveMutex(kRetiredMutex, kLiveMutex, MutexOf(mutex));
            return QX_S_OK;
        }
        return static_cast<QXResult>(DropReference(MutexOf(mutex)));
    });
}

QXResult QXMutexAcquire(QXHandle mutex) {
    return MutexOf(mutex)->Acquire();
}

QXResult QXMutexTryAcquire(QXHandle mutex) {
    return MutexOf(mutex)->TryAcquire();
}

QXResult QXMutexRelease(QXHandle mutex) {
    return MutexOf(mutex)->Release();
}

int32_t QXMutexAssertOwnership(QXHandle mutex, int16_t wantOwned) {
    return MutexOf(mutex)->AssertOwnership(wantOwned);
}

void* QXMutexGetOSMutex(QXHandle mutex) {
    return MutexOf(mutex)->GetOSMutex();
}

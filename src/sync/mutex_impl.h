// The plain mutex: a recursive critical section.
#ifndef QX_SYNC_MUTEX_IMPL_H
#define QX_SYNC_MUTEX_IMPL_H

#include "platform/sync.h"
#include "sync/mutex.h"

class CQXCoreMutexImpl : public qx::core::CQXMutex {
  public:
    CQXCoreMutexImpl(const char* name, u32 flags);
    ~CQXCoreMutexImpl() override;

    QXResult Acquire() override;
    QXResult TryAcquire() override;
    QXResult Release() override;
    QXResult GetStats(QXLockStats* stats) override;
    void ResetStats() override;
    i32 AssertOwnership(i16 wantOwned) override;
    void* GetOSMutex() override;

  protected:
    platform::CRITICAL_SECTION m_criticalSection;
};

#endif

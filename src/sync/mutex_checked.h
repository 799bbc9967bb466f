// The mutex that verifies its use, measures its waits and holds, or both.
#ifndef QX_SYNC_MUTEX_CHECKED_H
#define QX_SYNC_MUTEX_CHECKED_H

#include "sync/lock_figure.h"
#include "sync/mutex_impl.h"

// All fields are written under the critical section only, but by a reset, which asks for no lock,
// and by a stranger's release where nothing is verified. A check reads m_owner before it has the
// lock: the only value that can answer "mine" is one that this same thread wrote.
class CQXCoreMutexChecked final : public CQXCoreMutexImpl {
  public:
    CQXCoreMutexChecked(const char* name, u32 flags);

    QXResult Acquire() override;
    QXResult TryAcquire() override;
    QXResult Release() override;
    QXResult GetStats(QXLockStats* stats) override;
    void ResetStats() override;
    i32 AssertOwnership(i16 wantOwned) override;

  private:
    bool HasAll(u32 flags) const { return (m_flags & flags) == flags; }
    bool IsHeldByCaller() const;
    bool IsForbiddenRecursion() const;
    const wchar* FailedReleaseCheck() const;

    bool TakeAtOnce();
    bool LeaveAtOnce();
    QXResult AcquireSlowly();
    QXResult TryAcquireSlowly();
    QXResult ReleaseSlowly();

    void PostAcquire(i64 start);
    void PreRelease();
    void MeasureAcquisition(i64 start);
    void MeasureRelease(bool outermost);

    LockFigure<u32> m_owner;  // 0 when free
    // Times are in ticks, so that nothing divides before a report asks.
    LockFigure<i64> m_heldSince;
    LockFigure<i64> m_maxAcquireTime;
    LockFigure<i64> m_totalAcquireTime;
    LockFigure<i64> m_acquireCount;
    LockFigure<i64> m_maxHeldTime;
    LockFigure<i64> m_totalHeldTime;
    LockFigure<i64> m_heldCount;
    LockFigure<u16> m_lockDepth;
};

#endif

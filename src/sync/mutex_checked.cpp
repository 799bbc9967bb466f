#include "sync/mutex_checked.h"

#include <qxcore/debug.h>
#include <qxcore/lockstats.h>

#include <initializer_list>

#include "core/ticks.h"
#include "platform/threads.h"

namespace {

// 0 until the first checked mutex is made. Threads that race write the same value.
constinit LockFigure<i64> s_tickFrequency;

constexpr wchar kRecursionCheck[] = u"CQXCoreMutexChecked::preAcquire m_owner check failed";
constexpr wchar kOwnerCheck[] = u"CQXCoreMutexChecked::preRelease m_owner check failed";
constexpr wchar kDepthCheck[] = u"CQXCoreMutexChecked::preRelease m_lockDepth check failed";
constexpr wchar kSingleDepthCheck[] =
    u"CQXCoreMutexChecked::preRelease m_lockDepth non recursive check failed ";

[[gnu::cold]] QXResult ReportFailedCheck(const wchar* text) {
    QXErrorAlert(0, u"QXCore Critical Error", text);
    return QX_E_FAIL;
}

// The product wraps.
i64 MicrosecondsFromTicks(i64 ticks) {
    constexpr u64 kMicrosecondsPerSecond = 1'000'000;
    return static_cast<i64>(static_cast<u64>(ticks) * kMicrosecondsPerSecond) /
           s_tickFrequency.Get();
}

}  // namespace

CQXCoreMutexChecked::CQXCoreMutexChecked(const char* name, u32 flags)
    : CQXCoreMutexImpl(name, flags) {
    if (s_tickFrequency.Get() == 0) {
        s_tickFrequency.Set(TickFrequency());
    }
}

bool CQXCoreMutexChecked::IsHeldByCaller() const {
    return m_owner.Get() == platform::GetCurrentThreadId();
}

bool CQXCoreMutexChecked::IsForbiddenRecursion() const {
    return HasAll(QX_MUTEX_CHECKED | QX_MUTEX_NONRECURSIVE) && IsHeldByCaller();
}

// What the alert says about a release that may not be; null for one that may.
const wchar* CQXCoreMutexChecked::FailedReleaseCheck() const {
    if (!IsHeldByCaller()) {
        return kOwnerCheck;
    }
    if (m_lockDepth.Get() == 0) {
        return kDepthCheck;
    }
    return HasAll(QX_MUTEX_NONRECURSIVE) && m_lockDepth.Get() != 1 ? kSingleDepthCheck : nullptr;
}

// The common case of a mutex that is not measured, without a call: the caller does not hold it, and
// nobody else does.
inline bool CQXCoreMutexChecked::TakeAtOnce() {
    const u32 caller = platform::GetKnownThreadId();
    if (caller == 0 || HasAll(QX_MUTEX_STATS) || m_owner.Get() == caller ||
        !platform::TryEnterCriticalSection(&m_criticalSection)) {
        return false;
    }
    m_owner.Set(caller);
    m_lockDepth.Add(1);
    return true;
}

// The common case of a mutex that is verified and not measured: no check can fail.
inline bool CQXCoreMutexChecked::LeaveAtOnce() {
    if (HasAll(QX_MUTEX_STATS) || m_lockDepth.Get() != 1 ||
        m_owner.Get() != platform::GetKnownThreadId()) {
        return false;
    }
    m_lockDepth.Set(0);
    m_owner.Set(0);
    platform::LeaveCriticalSection(&m_criticalSection);
    return true;
}

QXResult CQXCoreMutexChecked::Acquire() {
    return TakeAtOnce() ? QX_S_OK : AcquireSlowly();
}

QXResult CQXCoreMutexChecked::TryAcquire() {
    return TakeAtOnce() ? QX_S_OK : TryAcquireSlowly();
}

QXResult CQXCoreMutexChecked::Release() {
    return LeaveAtOnce() ? QX_S_OK : ReleaseSlowly();
}

[[gnu::noinline]] QXResult CQXCoreMutexChecked::AcquireSlowly() {
    const i64 start = HasAll(QX_MUTEX_STATS) ? CurrentTick() : 0;
    if (IsForbiddenRecursion()) {
        return ReportFailedCheck(kRecursionCheck);
    }
    platform::EnterCriticalSection(&m_criticalSection);
    PostAcquire(start);
    return QX_S_OK;
}

[[gnu::noinline]] QXResult CQXCoreMutexChecked::TryAcquireSlowly() {
    if (IsForbiddenRecursion()) {
        return ReportFailedCheck(kRecursionCheck);
    }
    if (!platform::TryEnterCriticalSection(&m_criticalSection)) {
        return QX_E_FAIL;
    }
    PostAcquire(0);
    return QX_S_OK;
}

[[gnu::noinline]] QXResult CQXCoreMutexChecked::ReleaseSlowly() {
    const wchar* const failed = HasAll(QX_MUTEX_CHECKED) ? FailedReleaseCheck() : nullptr;
    if (failed != nullptr) {
        return ReportFailedCheck(failed);
    }
    PreRelease();
    platform::LeaveCriticalSection(&m_criticalSection);
    return QX_S_OK;
}

// `start` is the tick at which the wait began; 0 if there was none to measure.
void CQXCoreMutexChecked::PostAcquire(i64 start) {
    m_owner.Set(platform::GetCurrentThreadId());
    if (HasAll(QX_MUTEX_STATS)) {
        MeasureAcquisition(start);
    }
    m_lockDepth.Add(1);
}

void CQXCoreMutexChecked::PreRelease() {
    m_lockDepth.Add(static_cast<u16>(-1));
    const bool outermost = m_lockDepth.Get() == 0;
    if (outermost) {
        m_owner.Set(0);
    }
    if (HasAll(QX_MUTEX_STATS)) {
        MeasureRelease(outermost);
    }
}

void CQXCoreMutexChecked::MeasureAcquisition(i64 start) {
    if (m_lockDepth.Get() == 0) {
        const i64 now = CurrentTick();
        m_heldSince.Set(now);
        if (start != 0) {
            m_totalAcquireTime.Add(now - start);
            m_maxAcquireTime.RaiseTo(now - start);
        }
    }
    m_acquireCount.Add(1);
}

void CQXCoreMutexChecked::MeasureRelease(bool outermost) {
    if (outermost) {
        const i64 held = CurrentTick() - m_heldSince.Get();
        m_totalHeldTime.Add(held);
        m_maxHeldTime.RaiseTo(held);
    }
    m_heldCount.Add(1);
}

i32 CQXCoreMutexChecked::AssertOwnership(i16 wantOwned) {
    if (!HasAll(QX_MUTEX_CHECKED)) {
        return 1;
    }
    return IsHeldByCaller() ? wantOwned : wantOwned == 0;
}

// No lock is taken: the figures of a busy mutex need not fit each other.
QXResult CQXCoreMutexChecked::GetStats(QXLockStats* stats) {
    stats->maxAcquireTime = MicrosecondsFromTicks(m_maxAcquireTime.Get());
    stats->totalAcquireTime = MicrosecondsFromTicks(m_totalAcquireTime.Get());
    stats->acquireCount = m_acquireCount.Get();
    stats->maxHeldTime = MicrosecondsFromTicks(m_maxHeldTime.Get());
    stats->totalHeldTime = MicrosecondsFromTicks(m_totalHeldTime.Get());
    stats->heldCount = m_heldCount.Get();
    stats->contentionCount = platform::ContentionCount(&m_criticalSection);
    return QX_S_OK;
}

// m_heldSince stays: a hold that spans the reset is measured in full.
void CQXCoreMutexChecked::ResetStats() {
    for (LockFigure<i64>* const figure : {&m_maxAcquireTime, &m_totalAcquireTime, &m_acquireCount,
                                          &m_maxHeldTime, &m_totalHeldTime, &m_heldCount}) {
        figure->Set(0);
    }
    platform::ResetContentionCount(&m_criticalSection);
}

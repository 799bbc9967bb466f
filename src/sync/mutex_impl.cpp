#include "sync/mutex_impl.h"

namespace {

constexpr u32 kSpinCount = 4000;

}  // namespace

CQXCoreMutexImpl::CQXCoreMutexImpl(const char* name, u32 flags) : CQXMutex(name, flags) {
    if ((flags & QX_MUTEX_SPIN) != 0) {
        platform::InitializeCriticalSectionAndSpinCount(&m_criticalSection, kSpinCount);
    } else {
        platform::InitializeCriticalSection(&m_criticalSection);
    }
}

CQXCoreMutexImpl::~CQXCoreMutexImpl() {
    platform::DeleteCriticalSection(&m_criticalSection);
}

QXResult CQXCoreMutexImpl::Acquire() {
    platform::EnterCriticalSection(&m_criticalSection);
    return QX_S_OK;
}

QXResult CQXCoreMutexImpl::TryAcquire() {
    return platform::TryEnterCriticalSection(&m_criticalSection) ? QX_S_OK : QX_E_FAIL;
}

QXResult CQXCoreMutexImpl::Release() {
    platform::LeaveCriticalSection(&m_criticalSection);
    return QX_S_OK;
}

QXResult CQXCoreMutexImpl::GetStats(QXLockStats*) {
    return QX_E_NOTIMPL;
}

void CQXCoreMutexImpl::ResetStats() {}

i32 CQXCoreMutexImpl::AssertOwnership(i16) {
    return 1;
}

void* CQXCoreMutexImpl::GetOSMutex() {
    return &m_criticalSection;
}

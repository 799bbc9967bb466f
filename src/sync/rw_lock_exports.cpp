#include <qxcore/rwlock.h>

#include "core/entry_guard.h"
#include "sync/rw_lock.h"

namespace {

CQXRWLockImpl* LockOf(QXHandle handle) {
    return static_cast<CQXRWLockImpl*>(handle);
}

QXResult BusyUnless(bool done) {
    return done ? QX_S_OK : QX_E_FAIL;
}

}  // namespace

QXResult QXRWLockCreate(const char* name, uint32_t flags, QXHandle* out) {
    *out = QX_INVALID_HANDLE;
    return RunGuarded([&] {
        *out = new CQXRWLockImpl(name != nullptr ? name : "", flags);
        return QX_S_OK;
    });
}

QXResult QXRWLockDestroy(QXHandle lock) {
    delete LockOf(lock);
    return QX_S_OK;
}

QXResult QXRWLockAcquireRead(QXHandle lock) {
    return RunGuarded([&] {
        LockOf(lock)->AcquireRead();
        return QX_S_OK;
    });
}

QXResult QXRWLockAcquireWrite(QXHandle lock) {
    return RunGuarded([&] {
        LockOf(lock)->AcquireWrite();
        return QX_S_OK;
    });
}

QXResult QXRWLockTryAcquireRead(QXHandle lock) {
    return RunGuarded([&] { return BusyUnless(LockOf(lock)->TryAcquireRead()); });
}

QXResult QXRWLockTryAcquireWrite(QXHandle lock) {
    return RunGuarded([&] { return BusyUnless(LockOf(lock)->TryAcquireWrite()); });
}

QXResult QXRWLockReleaseRead(QXHandle lock) {
    return RunGuarded([&] { return BusyUnless(LockOf(lock)->ReleaseRead()); });
}

QXResult QXRWLockReleaseWrite(QXHandle lock) {
    return RunGuarded([&] { return BusyUnless(LockOf(lock)->ReleaseWrite()); });
}

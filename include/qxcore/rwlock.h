/**
 * @file
 * Reader/writer locks.
 *
 * Any number of threads hold the lock for reading, or one holds it for writing. Both are recursive:
 * a thread that reads may read again at once, also while a writer waits, and a thread that writes
 * may write and read again. A thread that reads may also ask to write (an upgrade): it gets the
 * lock as soon as it is the only reader, and its read holds are parked until its last write hold
 * ends.
 *
 * A writer that waits keeps new readers out. Writers and new readers queue alike.
 *
 * Two things deadlock, by design: an upgrade while another thread waits to write, since that one
 * waits for the upgrader's read hold; and so two upgrades at a time.
 *
 * Any thread may call any function here, several at once too, but for QXRWLockDestroy. The handle
 * is not checked.
 */
#ifndef QXCORE_RWLOCK_H
#define QXCORE_RWLOCK_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * Creates a reader/writer lock that nobody holds.
 *
 * @param name   narrow text, copied; null counts as empty.
 * @param flags  kept, without effect.
 * @param out    receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *               QXRWLockDestroy.
 * @return QX_S_OK; QX_E_OUTOFMEMORY; the mapped failure of the platform.
 */
QX_API QXResult QXRWLockCreate(const char* name, uint32_t flags, QXHandle* out);

/**
 * Gives a lock up. Nobody may hold it or be in a call on it.
 *
 * @param lock  the handle, which is gone afterwards; null is accepted.
 * @return QX_S_OK.
 */
QX_API QXResult QXRWLockDestroy(QXHandle lock);

/**
 * Takes a read hold, and waits as long as another thread writes or waits to write, unless the
 * caller reads already.
 *
 * @param lock  the handle.
 * @return QX_S_OK; QX_E_OUTOFMEMORY for a reader beyond the eighth, and then the lock is held for
 *         good and cannot be used any more; the mapped failure of the platform.
 */
QX_API QXResult QXRWLockAcquireRead(QXHandle lock);

/**
 * Takes a write hold, and waits as long as other threads read or write.
 *
 * An upgrade that had to wait leaves a trace: while the caller goes on reading behind its last
 * write hold, that reading does not keep a later writer out.
 *
 * @param lock  the handle.
 * @return QX_S_OK; the mapped failure of the platform, and then the lock cannot be used any more.
 */
QX_API QXResult QXRWLockAcquireWrite(QXHandle lock);

/**
 * Takes a read hold if that needs no waiting.
 *
 * @param lock  the handle.
 * @return QX_S_OK; QX_E_FAIL if another thread writes or waits to write, or is just in a call on
 * the lock; otherwise as QXRWLockAcquireRead.
 */
QX_API QXResult QXRWLockTryAcquireRead(QXHandle lock);

/**
 * Takes a write hold if that needs no waiting.
 *
 * @param lock  the handle.
 * @return QX_S_OK; QX_E_FAIL if other threads read or write, or are just in a call on the lock.
 */
QX_API QXResult QXRWLockTryAcquireWrite(QXHandle lock);

/**
 * Releases one read hold.
 *
 * While a thread writes, the call releases one of its parked read holds, whoever makes it.
 *
 * @param lock  the handle.
 * @return QX_S_OK; QX_E_FAIL if the caller has no read hold; the mapped failure of the platform. A
 *         thread that began to read while it wrote, and held nothing before, must release its reads
 *         before its last write: behind that they are QX_E_FAIL, and the lock counts them for good.
 */
QX_API QXResult QXRWLockReleaseRead(QXHandle lock);

/**
 * Releases one write hold. Behind the last one the caller reads, if it has parked read holds.
 *
 * @param lock  the handle.
 * @return QX_S_OK; QX_E_FAIL if nobody writes. It is not tested that the caller does.
 */
QX_API QXResult QXRWLockReleaseWrite(QXHandle lock);

QX_END_DECLS

#endif

/**
 * @file
 * Mutexes.
 *
 * A mutex is recursive, to any depth. Any thread may call any function here. The handle is not
 * checked: null or a handle that was destroyed is a fault of the caller.
 */
#ifndef QXCORE_MUTEX_H
#define QXCORE_MUTEX_H

#include <qxcore/result.h>

/** Flags of QXMutexCreate. Other bits are kept and have no effect. */
#define QX_MUTEX_NOSTATS 0x00000010u      /**< exempt from statistics: clears QX_MUTEX_STATS */
#define QX_MUTEX_SPIN 0x00010000u         /**< spin up to 4000 times before blocking */
#define QX_MUTEX_NONRECURSIVE 0x00020000u /**< with QX_MUTEX_CHECKED: recursion is an error */
#define QX_MUTEX_STATS 0x00040000u        /**< measure waits and holds: see qxcore/lockstats.h */
#define QX_MUTEX_CHECKED 0x80000000u      /**< verify owner and depth on each operation */

QX_BEGIN_DECLS

/**
 * Creates a mutex.
 *
 * @param name   narrow text, copied; null counts as empty.
 * @param flags  QX_MUTEX_ flags, 0 for a plain mutex.
 * @param out    receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *               QXMutexDestroy.
 * @return QX_S_OK; QX_E_OUTOFMEMORY; QX_E_FAIL.
 */
QX_API QXResult QXMutexCreate(const char* name, uint32_t flags, QXHandle* out);

/**
 * Gives a mutex up. Nobody may hold it or wait for it. A measured one stays in the reports of
 * QXDumpLockStats until QXResetLockStats.
 *
 * @param mutex  the handle, which is gone afterwards.
 * @return the number of references that remain, 0 for the usual single owner; the result of the
 *         entry guard if something fails on the way.
 */
QX_API QXResult QXMutexDestroy(QXHandle mutex);

/**
 * Takes a mutex, and waits for it as long as another thread holds it.
 *
 * Nobody else there: no system call.
 *
 * @param mutex  the handle.
 * @return QX_S_OK; QX_E_FAIL, after an alert, if the caller holds it already and it has both
 *         QX_MUTEX_CHECKED and QX_MUTEX_NONRECURSIVE.
 */
QX_API QXResult QXMutexAcquire(QXHandle mutex);

/**
 * Takes a mutex if no other thread holds it.
 *
 * @param mutex  the handle.
 * @return QX_S_OK; QX_E_FAIL if another thread holds it, and, after an alert, if the caller does
 * and it has both QX_MUTEX_CHECKED and QX_MUTEX_NONRECURSIVE.
 */
QX_API QXResult QXMutexTryAcquire(QXHandle mutex);

/**
 * Releases a mutex once; the last release of a thread that took it several times frees it.
 *
 * A plain mutex does not look who calls: a release by a thread that does not hold it is neither
 * refused nor reported, and undoes the holder's work. One that nobody holds stays as it is on
 * Linux; the reference platform's lock is spoilt by it. With QX_MUTEX_CHECKED such a release
 * changes nothing.
 *
 * @param mutex  the handle.
 * @return QX_S_OK; QX_E_FAIL, after an alert, if it has QX_MUTEX_CHECKED and the caller does not
 * hold it, or took it a multiple of 65536 times.
 */
QX_API QXResult QXMutexRelease(QXHandle mutex);

/**
 * Tells whether the calling thread's ownership is as wanted.
 *
 * @param mutex      the handle.
 * @param wantOwned  16-bit flag: not 0 to ask for "held by me", 0 for "not held by me".
 * @return not 0 if the assertion holds: `wantOwned` itself for the holder, 1 or 0 for others. A
 * mutex without QX_MUTEX_CHECKED does not look: it always says 1.
 */
QX_API int32_t QXMutexAssertOwnership(QXHandle mutex, int16_t wantOwned);

/**
 * Gives the platform's lock inside a mutex.
 *
 * @param mutex  the handle.
 * @return the address of the platform's lock (a CRITICAL_SECTION on the reference platform, the
 *         library's own lock elsewhere). It belongs to the mutex and lives as long.
 */
QX_API void* QXMutexGetOSMutex(QXHandle mutex);

QX_END_DECLS

#endif

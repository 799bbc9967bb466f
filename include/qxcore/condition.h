/**
 * @file
 * Conditions: a lock, and threads that sleep until another one has changed what the lock guards.
 *
 * The lock is a recursive one of the condition's own. A thread acquires it, waits as long as what
 * it wants is not so, and releases it. Any thread may signal, with the lock or without it. A signal
 * that nobody waits for is not remembered, and a wait may end for no reason: look again. Handles
 * are not checked.
 */
#ifndef QXCORE_CONDITION_H
#define QXCORE_CONDITION_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * Creates a condition.
 *
 * @param name   narrow text, copied; null counts as empty.
 * @param flags  kept, without effect.
 * @param out    receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *               QXConditionDestroy.
 * @return QX_S_OK; QX_E_OUTOFMEMORY; QX_E_FAIL.
 */
QX_API QXResult QXConditionCreate(const char* name, uint32_t flags, QXHandle* out);

/**
 * Gives a condition up. Nobody may hold its lock or be in a call on it, but a thread that a signal
 * has just released may destroy it at once, whatever the signalling thread is still about.
 *
 * @param condition  the handle, which is gone afterwards; null is accepted.
 * @return QX_S_OK.
 */
QX_API QXResult QXConditionDestroy(QXHandle condition);

/**
 * Takes the lock, and waits for it as long as another thread holds it. It counts its holds.
 *
 * @param condition  the handle.
 * @return QX_S_OK; QX_E_FAIL if the platform's lock fails.
 */
QX_API QXResult QXConditionAcquire(QXHandle condition);

/**
 * Releases the lock once.
 *
 * @param condition  the handle, whose lock the caller holds.
 * @return QX_S_OK.
 */
QX_API QXResult QXConditionRelease(QXHandle condition);

/**
 * Releases one thread that waits: the one that has waited longest.
 *
 * Nobody waiting: no system call.
 *
 * @param condition  the handle.
 * @return QX_S_OK.
 */
QX_API QXResult QXConditionSignal(QXHandle condition);

/**
 * Releases all threads that wait.
 *
 * @param condition  the handle.
 * @return QX_S_OK.
 */
QX_API QXResult QXConditionBroadcast(QXHandle condition);

/**
 * Gives the lock up once, waits for a signal, and takes the lock again.
 *
 * A caller that holds the lock more than once gives up one hold only, so that nobody else gets the
 * lock meanwhile.
 *
 * @param condition  the handle, whose lock the caller holds.
 * @return QX_S_OK; the mapped failure of the platform's wait. The lock is held either way.
 */
QX_API QXResult QXConditionWait(QXHandle condition);

/**
 * The same, waiting for a signal up to a time. To get the lock back may take longer.
 *
 * @param condition  the handle, whose lock the caller holds.
 * @param ms         milliseconds; all ones waits for ever.
 * @return QX_S_OK; QX_E_TIMEOUT if the time ran out; the mapped failure of the platform's wait. The
 *         lock is held in each case.
 */
QX_API QXResult QXConditionTimedWait(QXHandle condition, uint32_t ms);

QX_END_DECLS

#endif

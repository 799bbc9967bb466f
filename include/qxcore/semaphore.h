/**
 * @file
 * Semaphores: a count from 0 to 32767 that threads take from and add to.
 *
 * Any thread may call any function here, several at once too, but for QXSemaphoreDestroy. A post
 * that is given while threads wait belongs to the one that has waited longest; nobody who comes
 * later can take it. What was done before a post is seen behind the wait that it ends. The handle
 * is not checked.
 */
#ifndef QXCORE_SEMAPHORE_H
#define QXCORE_SEMAPHORE_H

#include <qxcore/result.h>

/** Flags of QXSemaphoreCreate. Other bits are kept and have no effect. */
#define QX_SEMAPHORE_NAMED                                 \
    0x00000002u /**< shared between processes by name: see \
                     qxcore/named_semaphore.h */

QX_BEGIN_DECLS

/**
 * Creates a semaphore.
 *
 * @param initialCount  the count to begin with, 0 to 32767.
 * @param name   narrow text, copied; null counts as empty. Without QX_SEMAPHORE_NAMED it has no
 *               effect.
 * @param flags  QX_SEMAPHORE_ flags, 0 for a semaphore of this process.
 * @param out    receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *               QXSemaphoreDestroy.
 * @return QX_S_OK; QX_E_FAIL for an initial count above 32767; QX_E_OUTOFMEMORY;
 *         with QX_SEMAPHORE_NAMED whatever QXNamedSemOpen returns.
 */
QX_API QXResult QXSemaphoreCreate(uint32_t initialCount, const char* name, uint32_t flags,
                                  QXHandle* out);

/**
 * Gives a semaphore up. Nobody may be in a call on it, but a thread that a post has just released
 * may destroy it at once, whatever the posting thread is still about.
 *
 * @param semaphore  the handle, which is gone afterwards; null is accepted.
 * @return QX_S_OK.
 */
QX_API QXResult QXSemaphoreDestroy(QXHandle semaphore);

/**
 * Releases one thread that waits, or adds 1 to the count if none does.
 *
 * Nobody waiting: no system call.
 *
 * @param semaphore  the handle.
 * @return QX_S_OK; QX_E_FAIL if the count is 32767, and stays so.
 */
QX_API QXResult QXSemaphorePost(QXHandle semaphore);

/**
 * Takes 1 from the count, and waits for a post as long as it is 0.
 *
 * A count that is not 0: no system call.
 *
 * @param semaphore  the handle.
 * @return QX_S_OK; the mapped failure of the platform's wait.
 */
QX_API QXResult QXSemaphoreWait(QXHandle semaphore);

/**
 * Takes 1 from the count unless it is 0.
 *
 * @param semaphore  the handle.
 * @return QX_S_OK; QX_E_FAIL if the count is 0; the mapped failure of the platform's wait.
 */
QX_API QXResult QXSemaphoreTryWait(QXHandle semaphore);

/**
 * Says that the count cannot be told.
 *
 * @param semaphore  the handle.
 * @param value      receives 0xFFFFFFFF, whatever the count is.
 * @return QX_S_OK.
 */
QX_API QXResult QXSemaphoreGetValue(QXHandle semaphore, uint32_t* value);

QX_END_DECLS

#endif

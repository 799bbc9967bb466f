/**
 * @file
 * Named semaphores: counts from 0 to 32767 that processes share.
 *
 * A semaphore lives as long as some process has it open, and its name is as new after that, also
 * when the last processes were killed. What is said of semaphores in qxcore/semaphore.h holds
 * across processes. A process that is killed while it waits takes nothing with it.
 *
 * On Linux a semaphore is a file in /dev/shm. Any user may open any other's and spoil it: one who
 * shortens the file has everybody who uses the semaphore killed by SIGBUS. A child that was forked
 * shares its parent's handles, and each side closes them for itself; a program that is started
 * inherits none.
 */
#ifndef QXCORE_NAMED_SEMAPHORE_H
#define QXCORE_NAMED_SEMAPHORE_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * Opens the semaphore of a name, or creates it if there is none. The caller cannot tell which.
 *
 * May block while other processes open the same semaphore, on Linux for ten seconds at most.
 *
 * @param name   narrow text, copied, of any length and any characters on Linux. Mappings have names
 *               of their own.
 * @param count  the count to begin with, 0 to 32767; without effect if the semaphore exists.
 * @param out    receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *               QXNamedSemClose.
 * @return QX_S_OK; QX_E_FAIL for a count above 32767, where there is no space for a new one, or
 *         where others are at it for too long; QX_E_ACCESSDENIED; QX_E_HANDLE if the name stands
 * for something else; QX_E_NOTFOUND on a Linux system without /dev/shm; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXNamedSemOpen(const char* name, uint32_t count, QXHandle* out);

/**
 * Gives a semaphore up. The same as QXSemaphoreDestroy.
 *
 * @param semaphore  the handle, which is gone afterwards; null is accepted, QX_INVALID_HANDLE not.
 * @return QX_S_OK.
 */
QX_API QXResult QXNamedSemClose(QXHandle semaphore);

/** Adds 1 to the count, or releases who has waited longest: QXSemaphorePost. */
QX_API QXResult QXNamedSemPost(QXHandle semaphore);

/** Takes 1 from the count, and waits for it: QXSemaphoreWait. */
QX_API QXResult QXNamedSemWait(QXHandle semaphore);

/** Takes 1 from the count unless it is 0, which is QX_E_FAIL: QXSemaphoreTryWait. */
QX_API QXResult QXNamedSemTryWait(QXHandle semaphore);

/** Stores 0xFFFFFFFF: QXSemaphoreGetValue. */
QX_API QXResult QXNamedSemGetValue(QXHandle semaphore, uint32_t* value);

QX_END_DECLS

#endif

/**
 * @file
 * Lock statistics.
 *
 * A mutex that was made with QX_MUTEX_STATS measures how long threads wait for it and hold it. The
 * library keeps a list of all such mutexes, also of those that are destroyed, and appends it to a
 * report file when it is asked to: reset the figures, run, dump.
 *
 * The figures are read and set to zero without the mutex's lock. Those of a mutex in use need not
 * fit each other, and a reset that meets an operation may miss a figure.
 */
#ifndef QXCORE_LOCKSTATS_H
#define QXCORE_LOCKSTATS_H

#include <qxcore/result.h>

/** The figures of one mutex. Times are in microseconds. */
typedef struct QXLockStats {
    int64_t maxAcquireTime;   /**< the longest wait */
    int64_t totalAcquireTime; /**< all waits: QXMutexAcquire by a thread that did not hold it yet */
    int64_t acquireCount;     /**< successful acquisitions and tries, recursive ones too */
    int64_t maxHeldTime;      /**< the longest hold */
    int64_t totalHeldTime;    /**< all holds: from the outermost acquisition to its release */
    int64_t heldCount;        /**< releases, recursive ones too */
    int64_t contentionCount;  /**< acquisitions that had to block; wraps after 2^32 */
} QXLockStats;

#ifdef __cplusplus
static_assert(sizeof(QXLockStats) == 56, "seven 64-bit figures");
#else
_Static_assert(sizeof(QXLockStats) == 56, "seven 64-bit figures");
#endif

QX_BEGIN_DECLS

/**
 * Gives the figures of a mutex.
 *
 * @param mutex  the handle; it is not checked.
 * @param stats  receives the figures. Those of a mutex with QX_MUTEX_CHECKED and without
 *               QX_MUTEX_STATS are 0, but for the contention, which the platform's lock counts.
 * @return QX_S_OK; QX_E_NOTIMPL for a plain mutex, with `stats` unchanged.
 */
QX_API QXResult QXGetLockStats(QXHandle mutex, QXLockStats* stats);

/**
 * Sets all figures of all measured mutexes to zero, and frees those that were destroyed. A hold
 * that goes on meanwhile is measured in full when it ends.
 *
 * @return QX_S_OK.
 */
QX_API QXResult QXResetLockStats(void);

/**
 * Appends a report on all measured mutexes to a file, which is made if it is missing.
 *
 * The report is text in lines, which end as text lines do on the platform. Each dump is
 *
 *     BeginLockStatistics: TITLE - MM/DD/YYYY HH:MM:SS
 *     CPU Frequency,1000000
 *     Name/Handle,Held Count,Total Held Time,Max Held Time,Acquire Count,Total Acquire Time,Max
 *     Acquire Time,Contention Count                        (one line with the one before)
 *     QX_MUTEX:0xHANDLE(NAME),1,2,3,4,5,6,7                (for each mutex)
 *     EndLockStatistics: TITLE - MM/DD/YYYY HH:MM:SS
 *
 * and two empty lines. Times are in microseconds, as the frequency says, and local. HANDLE is 16
 * upper-case hexadecimal digits. Live mutexes come first and those that were destroyed behind them,
 * as QX_DEL_MUTEX, each in the order of their addresses. Title and names stand as they are, without
 * quoting. Each line is written by itself, so that a disk that fills up leaves whole lines.
 *
 * Measured mutexes are neither made nor destroyed while a dump is being written; using them goes
 * on.
 *
 * @param title  narrow text; null counts as "LockStatsDump".
 * @param path   wide text; null counts as "qxlockstats.csv", in the current directory.
 * @return QX_S_OK; QX_E_FAIL if the file cannot be opened, written to or closed, with what was
 *         written until then left in it; QX_E_OUTOFMEMORY, likewise.
 */
QX_API QXResult QXDumpLockStats(const char* title, const wchar* path);

QX_END_DECLS

#endif

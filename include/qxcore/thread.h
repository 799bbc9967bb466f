/**
 * @file
 * Threads.
 *
 * The handle of a thread is its number, which is unique among the threads that are alive and that
 * have not been given up. Each thread that QXThreadCreate started is to be joined or detached once;
 * not by two threads at the same time.
 */
#ifndef QXCORE_THREAD_H
#define QXCORE_THREAD_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/** What a thread runs. The low 32 bits of what it returns are the thread's exit value. */
typedef void* (*QXThreadRoutine)(void* argument);

/**
 * Starts a thread.
 *
 * It may run before this function returns.
 *
 * @param routine    what it runs.
 * @param argument   handed to the routine.
 * @param reserved   not used.
 * @param stackSize  bytes, 0 for the system's default. On Linux less than 1 MiB counts as that, and
 *                   other sizes are rounded up.
 * @param thread     receives the handle, or QX_INVALID_HANDLE on failure.
 * @param id         receives the thread's number, which the handle is too; 0 if there is no thread.
 * @return QX_S_OK; QX_E_FAIL if the system refuses another thread; QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXThreadCreate(QXThreadRoutine routine, void* argument, void* reserved,
                               uint32_t stackSize, QXHandle* thread, uint32_t* id);

/**
 * Gives a thread up: it ends when its routine returns, and nobody asks for its exit value.
 *
 * @param thread  a handle of QXThreadCreate that was neither joined nor detached; any other one is
 * a fault of the caller.
 * @return QX_S_OK; the mapped failure of the platform.
 */
QX_API QXResult QXThreadDetach(QXHandle thread);

/**
 * Waits for a thread's end, for ever, and gives it up. When this returns, destructors of the
 * thread's own variables have run too.
 *
 * @param thread     a handle of QXThreadCreate; of the thread that calls, or of the one that has
 *                   loaded the library, it waits for the calling thread and does not return.
 * @param exitValue  receives the low 32 bits of what the routine returned, 0 on failure; or null.
 * @return QX_S_OK; QX_E_HANDLE if no such thread is on record: it was joined before, or detached
 * and has ended; QX_E_HANDLE for one that was detached and runs, which stays as it is.
 */
QX_API QXResult QXThreadJoin(QXHandle thread, uint64_t* exitValue);

/**
 * Tells whether a thread has ended and was given up. Not to be polled for the end of a thread that
 * was not detached: as long as nobody has joined it, the answer is 0. It stays 0 for a thread that
 * ended in another way than by its routine's return.
 *
 * @param thread  any handle of a thread.
 * @return a 16-bit flag: 1 if no such thread is on record, else 0.
 */
QX_API int16_t QXThreadIsFinished(QXHandle thread);

/**
 * Gives the platform's pseudo handle of the calling thread, whichever that is. It is no handle for
 * the functions above: they take QXThreadGetID for the calling thread.
 */
QX_API QXHandle QXThreadGetHandle(void);

/** Gives the number of the calling thread, the system's own, as debuggers show it. */
QX_API uint32_t QXThreadGetID(void);

/**
 * Lets another thread run that is ready to.
 *
 * @return QX_S_OK.
 */
QX_API QXResult QXThreadYield(void);

/**
 * Suspends the calling thread.
 *
 * A signal that is handled meanwhile does not shorten the sleep, and a thread that is cancelled
 * sleeps to the end first. 0 yields the processor.
 *
 * @param ms  milliseconds; all ones sleeps for ever.
 */
QX_API void QXSleep(uint32_t ms);

/**
 * Says on which processors the calling thread may run.
 *
 * @param mask  a bit for each of the first 64 processors.
 * @return QX_S_OK; QX_E_FAIL for no processor, and for one on which the process may not run.
 */
QX_API QXResult QXSetCpuAffinity(const uint64_t* mask);

/**
 * The same, and tells on which ones it was before.
 *
 * @param previous  receives the mask until now, 0 on failure.
 * @param mask      a bit for each of the first 64 processors.
 * @return as QXSetCpuAffinity.
 */
QX_API QXResult QXGetSetCpuAffinity(uint64_t* previous, const uint64_t* mask);

QX_END_DECLS

#endif

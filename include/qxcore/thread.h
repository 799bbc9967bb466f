/**
 * @file
 * Threads.
 */
#ifndef QXCORE_THREAD_H
#define QXCORE_THREAD_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/**
 * Suspends the calling thread.
 *
 * A signal that is handled meanwhile does not shorten the sleep. 0 yields the processor.
 *
 * @param ms  milliseconds; all ones sleeps for ever.
 */
QX_API void QXSleep(uint32_t ms);

QX_END_DECLS

#endif

/**
 * @file
 * Help for the debugger.
 */
#ifndef QXCORE_DEBUG_H
#define QXCORE_DEBUG_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/**
 * Stops in the debugger.
 *
 * A breakpoint trap in the calling thread. A debugger, or a handler of the trap, may go on after
 * it; with neither the process ends.
 */
QX_API void QXDebugBreak(void);

QX_END_DECLS

#endif

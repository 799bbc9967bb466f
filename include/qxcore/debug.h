/**
 * @file
 * Help for the debugger: assertions, alerts and trace.
 *
 * Any thread may call any function here, also before the library is initialised and after its
 * termination. One message box at a time is shown, and trace output waits while it is open.
 *
 * Formats are those of the C runtime's wide printf on the reference platform: `%s` and `%ls` take
 * wide text, `%hs` and `%S` narrow text, `%c` single units in the same way; a null text is
 * "(null)"; `%I64d` and `%lld` take 64 bits, and `%n` writes nothing. Formatted text is cut at 511
 * units.
 */
#ifndef QXCORE_DEBUG_H
#define QXCORE_DEBUG_H

#include <qxcore/result.h>

/** What an alert does. Bits combine, and are acted on in this order. Others have no effect. */
#define QX_ALERT_BREAK 0x00000002u    /**< stop in the debugger */
#define QX_ALERT_EVENTLOG 0x00000008u /**< write an entry in the system's event log */
#define QX_ALERT_MESSAGE 0x00000001u  /**< show a message box and act on the answer */
#define QX_ALERT_WAIT 0x00000004u     /**< wait until a debugger sets s_alertContinue to 1 */

QX_BEGIN_DECLS

/**
 * Tells of a condition that does not hold.
 *
 * Traces it, and raises an alert with the method that QXErrorAlertSetMethod has set, or with
 * QX_ALERT_BREAK if none is set. Returns to the caller unless the user answers "abort", or nobody
 * takes the break. In the trace the two texts are misread as wide text.
 *
 * @param expression  narrow text: what was expected.
 * @param file        narrow text: the source file.
 * @param line        the line in it.
 */
QX_API void QXAssert(const char* expression, const char* file, int32_t line);

/**
 * Stops in the debugger.
 *
 * A breakpoint trap in the calling thread (SIGTRAP on Linux). A debugger, or a handler of the trap,
 * may go on after it; with neither the process ends.
 */
QX_API void QXDebugBreak(void);

/**
 * Raises an alert.
 *
 * The message box has three buttons. "Abort" raises the abort signal and then ends the process with
 * the status 3; "retry" stops in the debugger; with "ignore", and when there is nobody to answer,
 * the function goes on. It waits for the answer as long as it takes. Where the platform has no
 * boxes of its own a dialog program shows it on the graphical session, or else the question is put
 * on the controlling terminal while the process is in its foreground.
 *
 * @param method  QX_ALERT_ bits; 0 for what QXErrorAlertSetMethod has set. If that is 0 too,
 * nothing happens.
 * @param title   wide text for the box and the event log. For null the box shows "QXErrorAlert".
 * @param format  wide format. Looked at for the box and the event log only.
 */
QX_API void QXErrorAlert(uint32_t method, const wchar* title, const wchar* format, ...);

/**
 * Sets what alerts without a method of their own do, for the whole process.
 *
 * @param method  QX_ALERT_ bits; 0, as at the start, for nothing.
 * @return QX_S_OK.
 */
QX_API QXResult QXErrorAlertSetMethod(uint32_t method);

/**
 * Writes to the debugger's output: the calling thread's id as "[0x1f]", and then the text. No line
 * end is added. Where the platform has no such output it is standard error while a debugger is
 * attached, and otherwise nothing is formatted or written.
 *
 * @param format  wide format.
 */
QX_API void QXTrace(const wchar* format, ...);

QX_END_DECLS

#endif

/**
 * @file
 * Events and gates: a signal that threads wait for.
 *
 * An event without QX_EVENT_MANUALRESET keeps its signal until one wait takes it. An event with it,
 * and a gate, stays signalled and lets everybody through until it is reset.
 *
 * Any thread may call any function here, several at once too, but for the destroying ones. A signal
 * that is given while threads wait belongs to those threads: it releases the one that has waited
 * longest, or all of them if the reset is manual, also if it is reset at once, and nobody who comes
 * later can take it. What was done before a signal is seen behind the wait that it ends. Handles
 * are not checked.
 *
 * A function of a gate and the function of an event that does the same are one function.
 */
#ifndef QXCORE_EVENT_H
#define QXCORE_EVENT_H

#include <qxcore/result.h>

/** Flags of QXEventCreate. Other bits are kept and have no effect. */
#define QX_EVENT_MANUALRESET 0x00000002u /**< stays signalled until it is reset */

QX_BEGIN_DECLS

/**
 * @name Events
 * @{
 */

/**
 * Creates an event that is not signalled.
 *
 * @param name   narrow text, copied; null counts as empty.
 * @param flags  QX_EVENT_ flags, 0 for an event that resets itself.
 * @param out    receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *               QXEventDestroy.
 * @return QX_S_OK; QX_E_OUTOFMEMORY; the mapped failure of the platform.
 */
QX_API QXResult QXEventCreate(const char* name, uint32_t flags, QXHandle* out);

/**
 * Gives an event up. Nobody may be in a call on it, but a thread that a signal has just released
 * may destroy it at once, whatever the signalling thread is still about.
 *
 * @param event  the handle, which is gone afterwards; null is accepted.
 * @return QX_S_OK.
 */
QX_API QXResult QXEventDestroy(QXHandle event);

/**
 * Signals an event: releases one thread that waits, or all of them if the reset is manual.
 *
 * Without a waiter, or with a manual reset, the event is signalled afterwards. A signal on top of
 * another one adds nothing. Nobody waiting: no system call.
 *
 * @param event  the handle.
 * @return QX_S_OK; the mapped failure of the platform.
 */
QX_API QXResult QXEventSignal(QXHandle event);

/**
 * Takes the signal away, if there is one.
 *
 * @param event  the handle.
 * @return QX_S_OK; the mapped failure of the platform.
 */
QX_API QXResult QXEventReset(QXHandle event);

/**
 * Waits for a signal, and takes it unless the reset is manual.
 *
 * A signalled event: no system call.
 *
 * @param event  the handle.
 * @return QX_S_OK; the mapped failure of the platform's wait.
 */
QX_API QXResult QXEventWait(QXHandle event);

/**
 * Waits for a signal up to a time.
 *
 * The time is counted from the call and signals that are handled meanwhile do not change it.
 *
 * @param event  the handle.
 * @param ms     milliseconds; 0 polls, all ones waits for ever.
 * @return QX_S_OK; QX_E_TIMEOUT if the time ran out; the mapped failure of the platform's wait.
 */
QX_API QXResult QXEventTimedWait(QXHandle event, uint32_t ms);

/** @} */

/**
 * @name Gates
 * @{
 */

/**
 * Creates a gate that is closed.
 *
 * @param name   narrow text, copied; null counts as empty.
 * @param flags  kept, without effect.
 * @param out    receives the handle, or QX_INVALID_HANDLE on failure. The caller owns it until
 *               QXGateDestroy.
 * @return as QXEventCreate.
 */
QX_API QXResult QXGateCreate(const char* name, uint32_t flags, QXHandle* out);

/** Gives a gate up: QXEventDestroy. */
QX_API QXResult QXGateDestroy(QXHandle gate);

/** Opens a gate and lets all who wait through: QXEventSignal. */
QX_API QXResult QXGateOpen(QXHandle gate);

/** Closes a gate: QXEventReset. */
QX_API QXResult QXGateClose(QXHandle gate);

/** Waits until a gate is open: QXEventWait. */
QX_API QXResult QXGateWait(QXHandle gate);

/** Waits until a gate is open, up to a time: QXEventTimedWait. */
QX_API QXResult QXGateTimedWait(QXHandle gate, uint32_t ms);

/**
 * Tells whether a gate is open.
 *
 * @param gate  the handle.
 * @return QX_S_OK if it is open; QX_E_FAIL if it is closed (where a QXGateTimedWait of 0 gives
 *         QX_E_TIMEOUT); the mapped failure of the platform's wait.
 */
QX_API QXResult QXGateTryWait(QXHandle gate);

/** @} */

QX_END_DECLS

#endif

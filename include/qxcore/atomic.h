/**
 * @file
 * Atomic operations on words that threads share.
 *
 * Each is one sequentially consistent read-modify-write on a naturally aligned word. Any thread
 * may call. None can fail.
 */
#ifndef QXCORE_ATOMIC_H
#define QXCORE_ATOMIC_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/**
 * Adds to a 32-bit word; the sum wraps.
 *
 * @param target  the word.
 * @param value   what is added.
 * @return the new value.
 */
QX_API uint32_t QXAtomicAdd32(uint32_t* target, uint32_t value);

/**
 * Adds to a pointer-sized word; the sum wraps.
 *
 * @param target  the word.
 * @param value   what is added.
 * @return the new value.
 */
QX_API size_t QXAtomicAddSZ(size_t* target, size_t value);

/**
 * Adds 1 to a 32-bit word; the sum wraps.
 *
 * @param target  the word.
 * @return the new value.
 */
QX_API uint32_t QXAtomicIncrement(uint32_t* target);

/**
 * Subtracts 1 from a 32-bit word; the difference wraps.
 *
 * @param target  the word.
 * @return the new value.
 */
QX_API uint32_t QXAtomicDecrement(uint32_t* target);

/**
 * Stores a 32-bit value.
 *
 * @param target  the word.
 * @param value   what is stored.
 * @return the old value.
 */
QX_API uint32_t QXAtomicExchange(uint32_t* target, uint32_t value);

/**
 * Stores a 32-bit value if the word holds an expected one.
 *
 * @param target     the word.
 * @param exchange   the value to store. Note the order: the new value stands before the expected.
 * @param comparand  the value that the word must hold for the store to happen.
 * @return the old value: the store happened if it equals `comparand`.
 */
QX_API uint32_t QXAtomicCompareExchange(uint32_t* target, uint32_t exchange, uint32_t comparand);

QX_END_DECLS

#endif

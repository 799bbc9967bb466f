/**
 * @file
 * Values at unaligned addresses, and byte order.
 *
 * The unaligned accesses use the machine's own byte order. Any thread may call. None can fail.
 */
#ifndef QXCORE_BYTES_H
#define QXCORE_BYTES_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/**
 * Reads a value at an address of any alignment.
 * @param address  where 2, 4 or 8 readable bytes stand.
 * @return the value, unsigned.
 */
QX_API uint16_t QXGetUnalignedInt16(const void* address);
QX_API uint32_t QXGetUnalignedInt32(const void* address); /**< @copydoc QXGetUnalignedInt16 */
QX_API uint64_t QXGetUnalignedInt64(const void* address); /**< @copydoc QXGetUnalignedInt16 */

/**
 * Stores a value at an address of any alignment.
 * @param address  where 2, 4 or 8 writable bytes stand.
 * @param value    the value.
 * @return `address`.
 */
QX_API void* QXPutUnalignedInt16(void* address, uint16_t value);
QX_API void* QXPutUnalignedInt32(void* address,
                                 uint32_t value); /**< @copydoc QXPutUnalignedInt16 */
QX_API void* QXPutUnalignedInt64(void* address,
                                 uint64_t value); /**< @copydoc QXPutUnalignedInt16 */

/**
 * Reverses the order of the bytes of a value.
 *
 * @param value  the value.
 * @return the reversed value.
 */
QX_API uint16_t QXSwapInt16(uint16_t value);
QX_API uint32_t QXSwapInt32(uint32_t value); /**< @copydoc QXSwapInt16 */
QX_API uint64_t QXSwapInt64(uint64_t value); /**< @copydoc QXSwapInt16 */

QX_END_DECLS

#endif

/**
 * @file
 * The heap, as the library's callers see it.
 *
 * Blocks of this family go back through QXFree and nowhere else: not to free() and not to
 * QXComFree. Each block is aligned as malloc() aligns it. Any thread may call; no function here
 * takes a lock of the library's own.
 */
#ifndef QXCORE_MEMORY_H
#define QXCORE_MEMORY_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * Allocates a block.
 *
 * @param size  bytes; 0 gives an empty block that is not null.
 * @param out   receives the block, or null on failure. The caller owns the block.
 * @return QX_S_OK, or QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXMalloc(size_t size, void** out);

/**
 * Allocates a block of zero bytes.
 *
 * @param count  number of elements.
 * @param size   bytes of one element. A product that does not fit fails.
 * @param out    receives the block, or null on failure. The caller owns the block.
 * @return QX_S_OK, or QX_E_OUTOFMEMORY.
 */
QX_API QXResult QXCalloc(size_t count, size_t size, void** out);

/**
 * Changes the size of a block. Bytes that are added hold anything.
 *
 * With a size of 0 a block is freed and null stored; a null block with a size of 0 becomes an
 * empty block. A null block is otherwise allocated afresh.
 *
 * @param block  in: the block or null; out: the block at its new place. Unchanged on failure.
 * @param size   bytes.
 * @return QX_S_OK, or QX_E_OUTOFMEMORY: the old block is then still valid.
 */
QX_API QXResult QXRealloc(void** block, size_t size);

/**
 * Changes the size of a block and zeroes what it adds.
 *
 * With a size of 0 the block is freed and, unlike QXRealloc, `*block` is left as it is: it points
 * at freed memory and must not be used again.
 *
 * @param block  in: the block or null, which gives a fresh block of zero bytes; out: the block at
 *               its new place. Unchanged on failure.
 * @param size   bytes.
 * @return QX_S_OK; QX_E_OUTOFMEMORY; QX_E_POINTER when the old block is empty, so that its size
 *         says nothing. After a failure the old block is as it was, except that a null block
 *         whose allocation fails stays null.
 */
QX_API QXResult QXRecalloc(void** block, size_t size);

/**
 * Frees a block.
 *
 * @param block  a block of this family; null is allowed and does nothing.
 * @return QX_S_OK, always.
 */
QX_API QXResult QXFree(void* block);

/**
 * Tells the size of a block, as it was asked for.
 *
 * @param block  a block of this family, or null.
 * @return bytes, exactly; 0 for null.
 */
QX_API size_t QXMallocSize(void* block);

/**
 * Rounds a size up to a multiple of 8.
 *
 * @param size  bytes.
 * @return the rounded size; a size within 7 of the largest wraps to 0.
 */
QX_API size_t QXGetAlignedSize(size_t size);

QX_END_DECLS

#endif

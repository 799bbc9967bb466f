/**
 * @file
 * Security descriptors, as the library gives them to the objects that processes share by name.
 */
#ifndef QXCORE_SECURITY_H
#define QXCORE_SECURITY_H

#include <qxcore/result.h>

/** The size of a security descriptor in bytes; it is aligned as a pointer is. */
#define QX_SECURITY_DESCRIPTOR_SIZE 40

QX_BEGIN_DECLS

/**
 * Fills a security descriptor that admits authenticated users and nobody else.
 *
 * The descriptor is the reference platform's SECURITY_DESCRIPTOR in its absolute form, on every
 * platform: revision 1, no owner, no group, no system list, and a discretionary list of one entry
 * that allows `mask` to S-1-5-11.
 *
 * @param descriptor  the caller's storage of QX_SECURITY_DESCRIPTOR_SIZE bytes.
 * @param mask        the access mask of the entry.
 * @param list        receives the list, to which the descriptor points; null after a failure. The
 *                    caller owns it until QXWinFreeRestrictedSD, and it must live for as long as
 *                    the descriptor is used.
 * @return QX_S_OK; QX_E_OUTOFMEMORY; the mapped failure of the platform.
 */
QX_API QXResult QXWinBuildRestrictedSD(void* descriptor, uint32_t mask, void** list);

/**
 * Frees the list of a descriptor, which is of no use afterwards.
 *
 * @param list  what QXWinBuildRestrictedSD stored; null is accepted.
 */
QX_API void QXWinFreeRestrictedSD(void* list);

QX_END_DECLS

#endif

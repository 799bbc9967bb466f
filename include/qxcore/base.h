/**
 * @file
 * Linkage, basic types and handles, shared by all families.
 *
 * Every declaration of the interface is documented in one order: a summary line; the behaviour;
 * the parameters with their units; every result; who owns what; which threads may call; see also.
 */
#ifndef QXCORE_BASE_H
#define QXCORE_BASE_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <uchar.h>
#endif

#if defined(_WIN32)
#if defined(QX_BUILDING_LIBRARY)
#define QX_API __declspec(dllexport)
#else
#define QX_API __declspec(dllimport)
#endif
#else
#define QX_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define QX_BEGIN_DECLS extern "C" {
#define QX_END_DECLS }
#else
#define QX_BEGIN_DECLS
#define QX_END_DECLS
#endif

/**
 * The wide character: one 16-bit unit on every platform. Wide text is a sequence of such units
 * that a zero unit ends. A client that prefers a 16-bit type of its own defines QX_WCHAR_TYPE as
 * that type before it includes this header.
 */
#ifndef QX_WCHAR_TYPE
#define QX_WCHAR_TYPE char16_t
#endif
typedef QX_WCHAR_TYPE wchar;
#ifdef __cplusplus
static_assert(sizeof(wchar) == 2, "QX_WCHAR_TYPE is a type of 16 bits");
#else
_Static_assert(sizeof(wchar) == 2, "QX_WCHAR_TYPE is a type of 16 bits");
#endif

/** A result code in the layout of an HRESULT: negative is failure. See qxcore/result.h. */
typedef int32_t QXResult;

/**
 * An opaque value that names an object of the library. A handle is not checked: one that is
 * stale or made up is a fault of the caller.
 */
typedef void* QXHandle;

/** The invalid handle: all bits one. Creating functions store it before anything else. */
#define QX_INVALID_HANDLE ((QXHandle)(intptr_t)(-1))

#endif

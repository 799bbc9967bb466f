/**
 * @file
 * The 16-byte identifiers that name classes and interfaces.
 *
 * Identifiers are compared and read by bytes: they may stand at any address. Any thread may call;
 * none of these functions needs the library to be initialised.
 */
#ifndef QXCORE_GUID_H
#define QXCORE_GUID_H

#include <qxcore/result.h>

#ifndef GUID_DEFINED
#define GUID_DEFINED
/** The published 16-byte identifier. The integers stand in little-endian order. */
typedef struct _GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;
#endif

#ifdef __cplusplus
static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data4) == 8, "the published layout");
#else
_Static_assert(sizeof(GUID) == 16 && offsetof(GUID, Data4) == 8, "the published layout");
#endif

/** 16-bit units of an identifier's text, "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", and its
 * terminator. */
#define QX_GUID_TEXT_SIZE 39

QX_BEGIN_DECLS

/**
 * Compares two identifiers for equality.
 *
 * @param left   one identifier, at any address.
 * @param right  the other.
 * @return 1 if all 16 bytes agree, otherwise 0.
 */
QX_API int32_t QXComIsEqualGUID(const GUID* left, const GUID* right);

/**
 * Orders two identifiers.
 *
 * The bytes are compared as unsigned values in the order of the offsets 10 to 15, 8, 9, 6, 7, 4,
 * 5, 0 to 3, so the order is neither that of memcmp nor that of the text form.
 *
 * @param left   one identifier, at any address.
 * @param right  the other.
 * @return 1 if the first is the greater, -1 if it is the smaller, 0 if they are equal.
 */
QX_API int32_t QXComCompareGUID(const GUID* left, const GUID* right);

/**
 * Reads an identifier from its text.
 *
 * The text is 8-4-4-4-12 hexadecimal digits in either case, bare or in braces. What follows the
 * last digit, or the closing brace, is not looked at.
 *
 * @param text  wide text.
 * @param guid  receives the identifier; untouched on failure.
 * @return QX_S_OK, or QX_E_INVALIDARG.
 */
QX_API QXResult QXComGUIDFromString(const wchar* text, GUID* guid);

/**
 * Writes an identifier as text, in braces and in upper case.
 *
 * @param guid    the identifier.
 * @param buffer  receives the text.
 * @param length  units of the buffer. Below QX_GUID_TEXT_SIZE the text is cut there and has no
 *                terminator.
 * @return QX_S_OK, always.
 */
QX_API QXResult QXComStringFromGUID(const GUID* guid, wchar* buffer, int32_t length);

/**
 * Makes a new identifier that no other call makes, in any process.
 *
 * @param guid  receives the identifier.
 * @return QX_S_OK; QX_E_FAIL if the system has no source of unique identifiers.
 */
QX_API QXResult QXComGenerateGUID(GUID* guid);

QX_END_DECLS

#endif

/**
 * @file
 * One form of text into another, in memory.
 */
#ifndef QXCORE_TRANSFORM_H
#define QXCORE_TRANSFORM_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/**
 * Converts narrow text to wide text. Narrow text is UTF-8; text in ASCII is converted without a
 * look at anything else.
 *
 * @param target  receives the text, or null to ask for its length.
 * @param source  narrow text.
 * @param limit   units of the target; not looked at when it is null. The terminator is stored if it
 *                fits; a character that does not fit as a whole is not begun.
 * @return the units written, or needed, without the terminator. For ill-formed text the number of
 *         ASCII characters before its first other byte, less 1: all ones if there is none.
 */
QX_API size_t QXAnsiToUnicode(wchar* target, const char* source, size_t limit);

QX_END_DECLS

#endif

/**
 * @file
 * Strings.
 */
#ifndef QXCORE_STRING_H
#define QXCORE_STRING_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/** @return the units of wide text before its terminator. */
QX_API size_t QXStrLenW(const wchar* text);

/** Copies wide text with its terminator. @return `target`. */
QX_API wchar* QXStrCpyW(wchar* target, const wchar* source);

/** Appends wide text with its terminator. @return `target`. */
QX_API wchar* QXStrCatW(wchar* target, const wchar* source);

/**
 * Copies at most `count` units of wide text, fills up with zero units if the source is shorter and
 * writes no terminator if it is not.
 * @return `target`.
 */
QX_API wchar* QXStrNCpyW(wchar* target, const wchar* source, size_t count);

QX_END_DECLS

#endif

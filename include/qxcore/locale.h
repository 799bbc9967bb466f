/**
 * @file
 * The locale and the narrow encoding that a process should assume. Any thread may call.
 */
#ifndef QXCORE_LOCALE_H
#define QXCORE_LOCALE_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * Gives the user's locale as an ICU locale name, such as "en_US".
 *
 * The name goes by the platform's locale number; a number without a name gives "en_US". Where the
 * platform has no such number it is taken from ICU's default locale, which is the process's own
 * (LC_ALL, LC_MESSAGES, LANG) as it stood when anything in the process first asked ICU for it: ICU
 * remembers the answer, so a later change of the environment or by setlocale() has no effect here.
 * The locale "C" is "en_US_POSIX".
 *
 * @param buffer  receives the name with its terminator; the rest of the buffer becomes zero. Left
 *                alone on failure.
 * @param size    units of the buffer; not negative.
 * @return QX_S_OK; QX_E_BUFFERTOOSMALL if name and terminator do not fit; QX_E_OUTOFMEMORY;
 *         QX_E_FAIL.
 */
QX_API QXResult QXGetDefaultLocale(wchar* buffer, int32_t size);

/**
 * Gives the name of the narrow encoding, for QXEncToW_Open: "UTF-8", or "CP" and the number of the
 * code page where the platform has another ("CP1252").
 *
 * @param buffer  receives the name with its terminator. Left alone on failure.
 * @param size    units of the buffer: at least 8, however short the name.
 * @return QX_S_OK; QX_E_BUFFERTOOSMALL.
 */
QX_API QXResult QXGetDefaultCharEncoding(wchar* buffer, int32_t size);

QX_END_DECLS

#endif

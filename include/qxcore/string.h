/**
 * @file
 * Zero-terminated text: narrow, wide and UTF-16.
 *
 * The suffix of a name tells the form of the text. `A` is narrow text, 8-bit units: UTF-8 on Linux,
 * the ANSI code page on Windows. `W` is wide text, each 16-bit unit handled alone.
 * `UCS2` is the same, by other rules for the result. `UTF16` is wide text in which ICU sees
 * surrogate pairs. `N` before the verb means bounded by a count; `NZ` takes the target's size too
 * and always terminates, so long as that size is at least 1; `I` ignores case. A name that ends in
 * `_32` is the same function as the one without it, for callers that keep the low 32 bits of its
 * result.
 *
 * Lengths, limits, counts and sizes are in units of the form, not in bytes: a wide buffer of 32
 * bytes has the size 16. A size counts the room for the terminator, a length does not.
 *
 * No function here reports a failure by a QXResult. Pointers are not checked: null is a fault of
 * the caller unless it is said to be allowed. Source and target do not overlap unless it is said
 * that they may. Wide text stands at even addresses.
 *
 * QXStrDupA, QXStrDupW, QXStrNDupA and QXStrNDupW let the C++ exception std::bad_alloc out when
 * there is no memory. A C client cannot catch it: the process ends unless a C++ caller further up
 * does. Nothing else here throws.
 *
 * There is no shared state: any thread may call anything at any time. The case, class and number
 * functions read the locale of the process (its character classification and its decimal point) for
 * what lies outside ASCII; loading this library sets that locale from the environment. ASCII is
 * ASCII in every locale. Narrow units from 0x80 up are parts of longer characters on Linux: they
 * belong to no class and keep their value. On Windows the C runtime's locale decides about them.
 */
#ifndef QXCORE_STRING_H
#define QXCORE_STRING_H

#include <qxcore/base.h>

QX_BEGIN_DECLS

/**
 * @name Length, duplicate, release
 * @{
 */

/**
 * Counts the units before the terminator.
 *
 * @param text  the text.
 * @return units. Of the `_32` names, callers keep the low 32 bits.
 */
QX_API size_t QXStrLenA(const char* text);
/** @copydoc QXStrLenA */
QX_API size_t QXStrLenA_32(const char* text);
/** @copydoc QXStrLenA */
QX_API size_t QXStrLenW(const wchar* text);
/** @copydoc QXStrLenA */
QX_API size_t QXStrLenW_32(const wchar* text);

/**
 * Counts the units, not the code points, before the terminator.
 *
 * @param text  the text.
 * @return units: the low 32 bits of the length, sign-extended, so that it is right up to
 *         0x7FFFFFFF.
 * @see QXCountCharUTF16
 */
QX_API int64_t QXStrLenUTF16(const wchar* text);

/**
 * Counts the units before the terminator, up to a limit.
 *
 * @param text   units; a terminator is not needed within the limit. Not read with a limit of 0.
 * @param limit  units.
 * @return units: the smaller of the length and the limit.
 */
QX_API size_t QXStrNLenA(const char* text, size_t limit);
/** @copydoc QXStrNLenA */
QX_API size_t QXStrNLenW(const wchar* text, size_t limit);
/** @copydoc QXStrNLenA */
QX_API size_t QXStrNLenUTF16(const wchar* text, size_t limit);

/**
 * Copies a text into a block of its own. May throw std::bad_alloc.
 *
 * @param text  the text, or null.
 * @return the copy, which the caller gives back to QXStrFreeA or QXStrFreeW; null for null.
 */
QX_API char* QXStrDupA(const char* text);
/** @copydoc QXStrDupA */
QX_API wchar* QXStrDupW(const wchar* text);

/**
 * Copies the head of a text into a block of its own, and terminates it. May throw std::bad_alloc.
 *
 * @param text   units; a terminator is not needed within the limit. Null is allowed.
 * @param limit  units that are copied at most; 0 gives an empty text.
 * @return the copy, which the caller gives back to QXStrFreeA or QXStrFreeW; null for null.
 */
QX_API char* QXStrNDupA(const char* text, uint32_t limit);
/** @copydoc QXStrNDupA */
QX_API wchar* QXStrNDupW(const wchar* text, uint32_t limit);

/**
 * Releases a block of QXStrDupA, QXStrDupW, QXStrNDupA or QXStrNDupW, whichever it came from.
 *
 * @param block  the block, or null.
 */
QX_API void QXStrFreeA(char* block);
/** @copydoc QXStrFreeA */
QX_API void QXStrFreeW(wchar* block);

/** @} */

/**
 * @name Copy and concatenate
 * @{
 */

/**
 * Copies a text with its terminator, unit by unit from the first on. The target may overlap the
 * source from below: `QXStrCpyW(text, text + 1)` drops the first unit.
 *
 * @param target  room for the whole text, unbounded.
 * @param source  the text.
 * @return `target`.
 */
QX_API char* QXStrCpyA(char* target, const char* source);
/** @copydoc QXStrCpyA */
QX_API wchar* QXStrCpyW(wchar* target, const wchar* source);

/**
 * Appends a text with its terminator.
 *
 * @param target  a text with room for both, unbounded.
 * @param source  what to append.
 * @return `target`.
 */
QX_API char* QXStrCatA(char* target, const char* source);
/** @copydoc QXStrCatA */
QX_API wchar* QXStrCatW(wchar* target, const wchar* source);

/**
 * Fills a number of units with a text and zero units behind it. No terminator is written when the
 * text has `count` units or more.
 *
 * @param target  room for `count` units.
 * @param source  the text; a terminator is not needed within `count` units.
 * @param count   units written, always all of them.
 * @return `target`.
 */
QX_API char* QXStrNCpyA(char* target, const char* source, size_t count);
/** @copydoc QXStrNCpyA */
QX_API wchar* QXStrNCpyW(wchar* target, const wchar* source, size_t count);

/**
 * Appends at most a number of units of a text, and always a terminator.
 *
 * @param target  a text with room for what is appended and its terminator, `count` + 1 units at
 *                most.
 * @param source  the text; a terminator is not needed within `count` units.
 * @param count   units of the source that are appended at most.
 * @return `target`.
 */
QX_API char* QXStrNCatA(char* target, const char* source, size_t count);
/** @copydoc QXStrNCatA */
QX_API wchar* QXStrNCatW(wchar* target, const wchar* source, size_t count);

/**
 * Copies into a bounded target, and always terminates it.
 *
 * The smaller of `targetSize` - 1 and `count` units are written, with zero units behind a source
 * that is shorter, and then a terminator. A longer source is cut without notice. Pass the source's
 * length or more as `count` for a plain bounded copy.
 *
 * @param target      the buffer.
 * @param targetSize  units of the buffer. With 0 nothing bounds the copy: `count` units and a
 *                    terminator are written all the same.
 * @param source      the text; a terminator is not needed within the units that are copied.
 * @param count       units of the source that are copied at most.
 * @return `target`.
 */
QX_API char* QXStrNZCpyA(char* target, size_t targetSize, const char* source, size_t count);
/** @copydoc QXStrNZCpyA */
QX_API wchar* QXStrNZCpyW(wchar* target, size_t targetSize, const wchar* source, size_t count);

/**
 * Copies into a bounded target, and always terminates it.
 *
 * As QXStrNZCpyW, except that what lies between the source's terminator and the last unit written
 * is left as it was. A surrogate pair may be cut in two.
 *
 * @param target      the buffer.
 * @param targetSize  units of the buffer. With 0 nothing bounds the copy.
 * @param source      the text; a terminator is not needed within the units that are copied.
 * @param count       units of the source that are copied at most. Of the smaller of this and
 *                    `targetSize` - 1 the low 32 bits count for the copy, as signed: none is copied
 *                    if they are negative. The terminator stands at the full number.
 */
QX_API void QXStrNZCpyUTF16(wchar* target, size_t targetSize, const wchar* source, size_t count);

/**
 * Appends within a bounded target, and always terminates it.
 *
 * A target without a terminator within its size loses its last unit to one, and takes nothing.
 * What does not fit is cut without notice. As in QXStrNZCpyA, a source that is shorter than the
 * smaller of the room and `count` is followed by zero units up to there.
 *
 * @param target      the buffer with the text in it.
 * @param targetSize  units of the buffer. With 0 a terminator is stored one unit in front of it.
 * @param source      the text; a terminator is not needed within the units that are copied.
 * @param count       units of the source that are appended at most.
 * @return where the appended units begin in the target, which is not `target` itself unless that
 *         was empty.
 */
QX_API char* QXStrNZCatA(char* target, size_t targetSize, const char* source, size_t count);
/** @copydoc QXStrNZCatA */
QX_API wchar* QXStrNZCatW(wchar* target, size_t targetSize, const wchar* source, size_t count);

/**
 * Appends within a bounded target, and always terminates it.
 *
 * As QXStrNZCatW, except that what lies between the source's terminator and the last unit written
 * is left as it was. A surrogate pair may be cut in two.
 *
 * @param target      the buffer with the text in it.
 * @param targetSize  units of the buffer. With 0 a terminator is stored one unit in front of it.
 * @param source      the text; a terminator is not needed within the units that are copied.
 * @param count       units of the source that are appended at most, of which, and of the room, the
 *                    low 32 bits count as for QXStrNZCpyUTF16.
 */
QX_API void QXStrNZCatUTF16(wchar* target, size_t targetSize, const wchar* source, size_t count);

/**
 * Writes a number of texts one behind the other, and a terminator. What was in the target is gone.
 *
 * @param target           room for all of it, unbounded; null does nothing.
 * @param numberOfStrings  how many arguments follow. Below 1 the target becomes empty.
 * @param ...              that many `const char*`; null ones count, and are skipped.
 * @return bytes written without the terminator; 0 for a null target.
 */
QX_API int32_t QXStrCpyCatA(char* target, int32_t numberOfStrings, ...);

/** @} */

/**
 * @name Compare
 * @{
 */

/**
 * Compares two texts unit by unit, as unsigned numbers.
 *
 * @param first   a text.
 * @param second  a text.
 * @return -1, 0 or 1: the first is less, equal or greater.
 */
QX_API int32_t QXStrCmpA(const char* first, const char* second);
/** @copydoc QXStrCmpA */
QX_API int32_t QXStrCmpW(const wchar* first, const wchar* second);

/**
 * Compares two texts unit by unit.
 *
 * @param first   a text.
 * @param second  a text.
 * @return 0 when equal; otherwise the first text's unit less the second's where they begin to
 *         differ.
 */
QX_API int32_t QXStrCmpUCS2(const wchar* first, const wchar* second);

/**
 * Compares two texts in the order of code points: a surrogate pair comes after U+FFFF.
 *
 * @param first   a text.
 * @param second  a text.
 * @return negative, 0 or positive: the first is less, equal or greater.
 */
QX_API int32_t QXStrCmpUTF16(const wchar* first, const wchar* second);

/**
 * Compares two texts without regard to ASCII case.
 *
 * As long as both have units below 0x80, letters count as upper case ("_" is greater than "a").
 * From the first pair with a unit from 0x80 up, the rest is compared with letters as lower case.
 *
 * @param first   a text.
 * @param second  a text.
 * @return 0 when equal; otherwise the difference of the folded units, as unsigned bytes, where
 *         they begin to differ.
 */
QX_API int32_t QXStrICmpA(const char* first, const char* second);

/**
 * Compares two texts with every unit mapped to lower case by the process's locale.
 *
 * @param first   a text.
 * @param second  a text.
 * @return negative, 0 or positive: the first is less, equal or greater.
 */
QX_API int32_t QXStrICmpW(const wchar* first, const wchar* second);

/**
 * Compares two texts with A to Z mapped to lower case, and nothing else ("_" is less than "a").
 *
 * @param first   a text.
 * @param second  a text.
 * @return 0 when equal; otherwise the difference of the folded units where they begin to differ.
 */
QX_API int32_t QXStrICmpUCS2(const wchar* first, const wchar* second);

/**
 * Compares two texts by Unicode's full case folding, in the order of code points.
 *
 * @param first   a text.
 * @param second  a text.
 * @return negative, 0 or positive: the first is less, equal or greater.
 */
QX_API int32_t QXStrICmpUTF16(const wchar* first, const wchar* second);

/**
 * Compares the heads of two texts unit by unit, as unsigned numbers.
 *
 * @param first   units; a terminator is not needed within `count` units.
 * @param second  the same.
 * @param count   units that take part at most.
 * @return negative, 0 or positive: the first is less, equal or greater.
 */
QX_API int32_t QXStrNCmpA(const char* first, const char* second, size_t count);
/** @copydoc QXStrNCmpA */
QX_API int32_t QXStrNCmpW(const wchar* first, const wchar* second, size_t count);

/**
 * Compares the heads of two texts in the order of code points.
 *
 * @param first   units; a terminator is not needed within `count` units.
 * @param second  the same.
 * @param count   units that take part at most; only its low 32 bits are read, as signed. 0 makes
 * the texts equal; a negative number compares them whole, up to their terminators.
 * @return negative, 0 or positive: the first is less, equal or greater.
 */
QX_API int32_t QXStrNCmpUTF16(const wchar* first, const wchar* second, size_t count);

/**
 * Compares the heads of two texts without regard to ASCII case, as QXStrICmpA does.
 *
 * @param first   units; a terminator is not needed within `count` units.
 * @param second  the same.
 * @param count   units that take part at most.
 * @return 0 when equal; otherwise the difference of the folded units, as unsigned bytes, where
 *         they begin to differ.
 */
QX_API int32_t QXStrNICmpA(const char* first, const char* second, size_t count);

/**
 * Compares the heads of two texts with every unit mapped to lower case by the process's locale.
 *
 * @param first   units; a terminator is not needed within `count` units.
 * @param second  the same.
 * @param count   units that take part at most.
 * @return negative, 0 or positive: the first is less, equal or greater.
 */
QX_API int32_t QXStrNICmpW(const wchar* first, const wchar* second, size_t count);

/**
 * Compares the first three units of two texts by Unicode's full case folding.
 *
 * @param first   a text.
 * @param second  a text.
 * @param count   ignored: three units take part at most, whatever it says.
 * @return negative, 0 or positive: the first is less, equal or greater.
 */
QX_API int32_t QXStrNICmpUTF16(const wchar* first, const wchar* second, size_t count);

/** @} */

/**
 * @name Search
 * @{
 */

/**
 * Finds the first place of a unit.
 *
 * @param text  where to search. The result points into it and is as constant as it is.
 * @param unit  what to find; 0 finds the terminator.
 * @return where it stands, or null.
 */
QX_API char* QXStrChrA(const char* text, char unit);
/** @copydoc QXStrChrA */
QX_API wchar* QXStrChrW(const wchar* text, wchar unit);

/**
 * Finds the first place of a unit; a surrogate only where it is unpaired.
 *
 * @param text  where to search. The result points into it and is as constant as it is.
 * @param unit  what to find; 0 finds the terminator.
 * @return where it stands, or null.
 */
QX_API wchar* QXStrChrUCS2(const wchar* text, wchar unit);

/**
 * Finds the first place of a code point.
 *
 * @param text       where to search. The result points into it and is as constant as it is.
 * @param codePoint  what to find: a pair from 0x10000 up, a surrogate only where it is unpaired; 0
 *                   finds the terminator.
 * @return where it stands, or null; null above 0x10FFFF.
 */
QX_API wchar* QXStrChrUTF16(const wchar* text, uint32_t codePoint);

/**
 * Finds the last place of a unit.
 *
 * @param text  where to search. The result points into it and is as constant as it is.
 * @param unit  what to find; 0 finds the terminator.
 * @return where it stands, or null.
 */
QX_API char* QXStrRChrA(const char* text, char unit);
/** @copydoc QXStrRChrA */
QX_API wchar* QXStrRChrW(const wchar* text, wchar unit);

/**
 * Finds the last place of a unit; a surrogate only where it is unpaired.
 *
 * @param text  where to search. The result points into it and is as constant as it is.
 * @param unit  what to find; 0 finds the terminator.
 * @return where it stands, or null.
 */
QX_API wchar* QXStrRChrUCS2(const wchar* text, wchar unit);

/**
 * Finds the last place of a code point.
 *
 * @param text       where to search. The result points into it and is as constant as it is.
 * @param codePoint  what to find: a pair from 0x10000 up, a surrogate only where it is unpaired; 0
 *                   finds the terminator.
 * @return where it stands, or null; null above 0x10FFFF.
 */
QX_API wchar* QXStrRChrUTF16(const wchar* text, uint32_t codePoint);

/**
 * Finds the first place of one text in another.
 *
 * @param text    where to search. The result points into it and is as constant as it is.
 * @param sought  what to find; an empty text is found at once.
 * @return where it stands, or null.
 */
QX_API char* QXStrStrA(const char* text, const char* sought);
/** @copydoc QXStrStrA */
QX_API wchar* QXStrStrW(const wchar* text, const wchar* sought);

/**
 * Finds the first place of one text in another, without splitting a surrogate pair at either end.
 *
 * @param text    where to search. The result points into it and is as constant as it is.
 * @param sought  what to find; an empty text is found at once.
 * @return where it stands, or null.
 */
QX_API wchar* QXStrStrUTF16(const wchar* text, const wchar* sought);

/**
 * Gives the next token of a text. There is no hidden state: the cursor is all.
 *
 * Set the cursor to the text before the first call. Runs of delimiters give no empty tokens. The
 * text is changed: the delimiter behind a token becomes a terminator.
 *
 * @param cursor      in: where to go on, or null; out: behind the token's delimiter, or null when
 *                    the text is used up.
 * @param delimiters  the units that separate tokens.
 * @return the token, within the text; null when there is no more.
 */
QX_API char* QXStrTokA(char** cursor, const char* delimiters);
/** @copydoc QXStrTokA */
QX_API wchar* QXStrTokW(wchar** cursor, const wchar* delimiters);

/** @} */

/**
 * @name Case
 * @{
 */

/**
 * Maps one narrow unit to lower or upper case. From 0x80 up nothing changes on Linux.
 *
 * @param unit  the unit.
 * @return the mapped unit; on Linux one from 0x80 up comes back as a negative number.
 */
QX_API int32_t QXToLowerA(char unit);
/** @copydoc QXToLowerA */
QX_API int32_t QXToUpperA(char unit);

/**
 * Maps one wide unit to lower or upper case, above U+007F by the process's locale.
 *
 * @param unit  the unit; a surrogate stays as it is.
 * @return the mapped unit.
 */
QX_API uint32_t QXToLowerW(wchar unit);
/** @copydoc QXToLowerW */
QX_API uint32_t QXToUpperW(wchar unit);

/**
 * Maps a text to lower or upper case in place. From 0x80 up nothing changes on Linux.
 *
 * @param text  the text.
 * @return `text`.
 */
QX_API char* QXStrToLowerA(char* text);
/** @copydoc QXStrToLowerA */
QX_API char* QXStrToUpperA(char* text);

/**
 * Maps a text to lower or upper case in place, unit by unit, above U+007F by the process's locale.
 *
 * @param text  the text.
 * @return `text`.
 */
QX_API wchar* QXStrToLowerW(wchar* text);
/** @copydoc QXStrToLowerW */
QX_API wchar* QXStrToUpperW(wchar* text);

/**
 * Maps a text to lower or upper case in place by ICU's default locale, and as many units behind
 * it.
 *
 * The mapping runs over twice the text's length: over the text, its terminator and what stands
 * behind it, and all of that changes case. A mapping that lengthens the text moves its terminator
 * along. What becomes longer than twice the text is cut there, and the terminator may be lost: a
 * buffer of one unit more, set to 0, is safe. Where such a cut finds no memory for a copy, the text
 * stays as it is.
 *
 * @param text  the text, in a buffer of at least twice its length in units, all of it initialised.
 * @return `text`.
 */
QX_API wchar* QXStrToLowerUTF16(wchar* text);
/** @copydoc QXStrToLowerUTF16 */
QX_API wchar* QXStrToUpperUTF16(wchar* text);

/** @} */

/**
 * @name Character classes
 * @{
 */

/**
 * Tells whether a narrow unit is a letter or a digit.
 *
 * @param unit  the unit; from 0x80 up it is neither on Linux.
 * @return not 0 if it is.
 */
QX_API int32_t QXIsAlphaA(signed char unit);
/** @copydoc QXIsAlphaA */
QX_API int32_t QXIsDigitA(signed char unit);

/**
 * Tells whether a wide unit is a letter or a digit, by the process's locale.
 *
 * @param unit  the unit; a surrogate is neither.
 * @return not 0 if it is.
 */
QX_API int32_t QXIsAlphaW(wchar unit);
/** @copydoc QXIsAlphaW */
QX_API int32_t QXIsDigitW(wchar unit);

/**
 * Tells whether a narrow unit is white space: 32, or 9 to 13.
 *
 * @param unit  the unit; from 0x80 up it is not on Linux.
 * @return not 0 if it is; 1 or 0 below 0x80.
 */
QX_API int32_t QXIsSpaceA(char unit);

/**
 * Tells whether a wide unit is white space: 32, or 9 to 13, or above U+007F by the process's
 * locale.
 *
 * @param unit  the unit.
 * @return not 0 if it is; 1 or 0 up to U+007F.
 */
QX_API int32_t QXIsSpaceW(wchar unit);

/** @} */

/**
 * @name Numbers
 * @{
 */

/**
 * Reads a decimal number. White space and a sign may stand in front; reading ends at the first
 * unit that is no digit.
 *
 * @param text  the text.
 * @return the number; 0 if there is none; the nearest of the range, with `errno` set to ERANGE, if
 *         it does not fit.
 */
QX_API int32_t QXStrToIA(const char* text);
/** @copydoc QXStrToIA */
QX_API int32_t QXStrToIW(const wchar* text);
/** @copydoc QXStrToIA */
QX_API int64_t QXStrToI64W(const wchar* text);

/**
 * Reads a signed whole number.
 *
 * White space and a sign may stand in front. Digits above 9 are letters of either case.
 *
 * @param text   the text.
 * @param end    receives where reading ended, within the text: its beginning if there is no
 *               number. Null is allowed.
 * @param radix  2 to 36; 16 allows "0x" in front; 0 takes the radix from the text: "0x" for 16,
 *               "0" for 8, 10 otherwise. Another radix gives 0 and sets `errno` to EINVAL.
 * @return the number; 0 if there is none; the nearest of the range, with `errno` set to ERANGE, if
 *         it does not fit.
 */
QX_API int32_t QXStrToLA(const char* text, char** end, int32_t radix);
/** @copydoc QXStrToLA */
QX_API int32_t QXStrToLW(const wchar* text, wchar** end, int32_t radix);
/** @copydoc QXStrToLA */
QX_API int64_t QXStrToLLA(const char* text, char** end, int32_t radix);
/** @copydoc QXStrToLA */
QX_API int64_t QXStrToLLW(const wchar* text, wchar** end, int32_t radix);

/**
 * Reads an unsigned whole number. A minus sign negates within the width of the result.
 *
 * White space and a sign may stand in front. Digits above 9 are letters of either case.
 *
 * @param text   the text.
 * @param end    receives where reading ended, within the text: its beginning if there is no
 *               number. Null is allowed.
 * @param radix  2 to 36; 16 allows "0x" in front; 0 takes the radix from the text: "0x" for 16,
 *               "0" for 8, 10 otherwise. Another radix gives 0 and sets `errno` to EINVAL.
 * @return the number; 0 if there is none; the greatest of the range, with `errno` set to ERANGE,
 *         if what stands behind the sign does not fit: of 32 bits, "-4294967295" gives 1 and
 *         "-4294967296" the greatest.
 */
QX_API uint32_t QXStrToULA(const char* text, char** end, int32_t radix);
/** @copydoc QXStrToULA */
QX_API uint32_t QXStrToULW(const wchar* text, wchar** end, int32_t radix);
/** @copydoc QXStrToULA */
QX_API uint64_t QXStrToULLA(const char* text, char** end, int32_t radix);

/**
 * Reads a floating-point number. The decimal point is that of the process's locale.
 *
 * @param text  the text.
 * @param end   receives where reading ended, within the text: its beginning if there is no number.
 *              Null is allowed.
 * @return the number; 0 if there is none; an infinity or the nearest small number, with `errno`
 *         set to ERANGE, if it does not fit. QXStrToDW gives 0 and sets `errno` to ENOMEM when a
 *         number of more than 120 units finds no memory.
 */
QX_API double QXStrToDA(const char* text, char** end);
/** @copydoc QXStrToDA */
QX_API double QXStrToDW(const wchar* text, wchar** end);

/**
 * Writes a whole number as text, with small letters for digits above 9.
 *
 * A minus sign is written for radix 10 only; otherwise a negative number stands as its
 * two's-complement pattern in the width of the value.
 *
 * @param value   the number.
 * @param buffer  room for the text and its terminator, unbounded: 34 units are enough for 32 bits,
 *                66 for 64 bits.
 * @param radix   2 to 36. Another radix gives an empty text and sets `errno` to EINVAL.
 * @return `buffer`.
 */
QX_API char* QXLToStrA(int32_t value, char* buffer, int32_t radix);
/** @copydoc QXLToStrA */
QX_API wchar* QXLToStrW(int32_t value, wchar* buffer, int32_t radix);
/** @copydoc QXLToStrA */
QX_API char* QXInt64ToStrA(int64_t value, char* buffer, int32_t radix);
/** @copydoc QXLToStrA */
QX_API wchar* QXInt64ToStrW(int64_t value, wchar* buffer, int32_t radix);

/** @} */

QX_END_DECLS

#endif

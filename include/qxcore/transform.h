/**
 * @file
 * One Unicode form of text into another, in memory, and narrow text to wide text and back.
 *
 * Any thread may call any function here. None keeps what it is given.
 *
 * Capacities and lengths count units of their own text: bytes of UTF-8, 16-bit units of UTF-16,
 * 32-bit units of UTF-32. Of a capacity the low 32 bits count, read as signed. A source length of
 * -1 stands for text up to its terminator. A source and a target do not overlap.
 *
 * The target is terminated if there is room for that beside the text. Text that fills the capacity
 * exactly has no terminator, and is a success.
 */
#ifndef QXCORE_TRANSFORM_H
#define QXCORE_TRANSFORM_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/**
 * The UTF-8 byte-order mark: its three bytes, terminated. A client may put another text of at least
 * three bytes in its place, which QXIsUtf8BomStr compares with from then on.
 */
extern QX_API const char* QXUtf8BomStr;

/**
 * Converts UTF-8 to UTF-16.
 *
 * @param target        receives the text; null with a capacity of 0 to ask for the length.
 * @param capacity      16-bit units of the target.
 * @param outLength     receives the length of the whole text, without terminator, also when it did
 *                      not fit; 0 after any other failure. May be null.
 * @param source        UTF-8.
 * @param length        bytes of the source, or -1.
 * @param substitution  code point that takes the place of each bad sequence (0 is U+0000 here);
 *                      negative to fail at the first.
 * @return QX_S_OK; QX_E_ILLEGALCHAR: bad input and a negative substitution; QX_E_BUFFERTOOSMALL;
 *         QX_E_FAIL: a surrogate or more than 0x10FFFF as substitution, a negative capacity, a
 *         length below -1, a null source with a length, a null target with a capacity.
 */
QX_API QXResult QXEncUTF8ToUTF16(wchar* target, size_t capacity, size_t* outLength,
                                 const char* source, int32_t length, int32_t substitution);

/**
 * QXEncUTF8ToUTF16 under a shorter name.
 *
 * @param target        receives the text; see QXEncUTF8ToUTF16.
 * @param capacity      16-bit units of the target.
 * @param outLength     as in QXEncUTF8ToUTF16.
 * @param source        UTF-8.
 * @param length        bytes of the source, or -1.
 * @param substitution  as in QXEncUTF8ToUTF16.
 */
QX_API QXResult QXUTF8ToW(wchar* target, size_t capacity, size_t* outLength, const char* source,
                          int32_t length, int32_t substitution);

/**
 * Converts UTF-16 to UTF-8. Unpaired surrogates are bad input. Otherwise as QXEncUTF8ToUTF16, with
 * the two forms exchanged.
 *
 * @param target        receives the text; see QXEncUTF8ToUTF16.
 * @param capacity      bytes of the target.
 * @param outLength     as in QXEncUTF8ToUTF16.
 * @param source        UTF-16.
 * @param length        16-bit units of the source, or -1.
 * @param substitution  as in QXEncUTF8ToUTF16.
 */
QX_API QXResult QXEncUTF16ToUTF8(char* target, size_t capacity, size_t* outLength,
                                 const wchar* source, int32_t length, int32_t substitution);

/**
 * QXEncUTF16ToUTF8 under a shorter name.
 *
 * @param target        receives the text; see QXEncUTF8ToUTF16.
 * @param capacity      bytes of the target.
 * @param outLength     as in QXEncUTF8ToUTF16.
 * @param source        UTF-16.
 * @param length        16-bit units of the source, or -1.
 * @param substitution  as in QXEncUTF8ToUTF16.
 */
QX_API QXResult QXWToUTF8(char* target, size_t capacity, size_t* outLength, const wchar* source,
                          int32_t length, int32_t substitution);

/**
 * Converts UTF-8 to UTF-32, by way of UTF-16 in scratch memory: on the heap from 512 bytes of
 * source up. The scratch then has one unit for each byte of the source: bad input whose
 * substitutes, of two units above U+FFFF, overflow it gives QX_E_BUFFERTOOSMALL for any target.
 *
 * @param target        receives the text; null with a capacity of 0 to ask for the length.
 * @param capacity      32-bit units of the target.
 * @param outLength     as in QXEncUTF8ToUTF16, but not null. Not stored when memory runs out.
 * @param source        UTF-8, not null with a negative length.
 * @param length        bytes of the source; any negative value stands for text up to its
 *                      terminator.
 * @param substitution  as in QXEncUTF8ToUTF16.
 * @return as QXEncUTF8ToUTF16; also QX_E_FAIL when memory runs out.
 */
QX_API QXResult QXEncUTF8ToUTF32(char32_t* target, size_t capacity, size_t* outLength,
                                 const char* source, int64_t length, int32_t substitution);

/**
 * Converts UTF-32 to UTF-8. Surrogates and what lies above U+10FFFF are bad input. The scratch is
 * on the heap from 256 units of source up. Otherwise as QXEncUTF8ToUTF32, with the two forms
 * exchanged.
 *
 * @param target        receives the text; see QXEncUTF8ToUTF32.
 * @param capacity      bytes of the target.
 * @param outLength     as in QXEncUTF8ToUTF32.
 * @param source        UTF-32.
 * @param length        32-bit units of the source, or -1.
 * @param substitution  as in QXEncUTF8ToUTF32.
 */
QX_API QXResult QXEncUTF32ToUTF8(char* target, size_t capacity, size_t* outLength,
                                 const char32_t* source, int64_t length, int32_t substitution);

/**
 * Converts terminated UTF-8 to UTF-16.
 *
 * @param target    receives the text; null with a capacity of 0 to ask for the length.
 * @param source    terminated UTF-8.
 * @param capacity  16-bit units of the target.
 * @return the length of the whole text, without terminator, also if it is more than the capacity
 *         and was cut; the capacity after bad input or a bad argument.
 */
QX_API int64_t QXUTF8ToUTF16(wchar* target, const char* source, int32_t capacity);

/**
 * Converts terminated UTF-16 to UTF-8. As QXUTF8ToUTF16, with the two forms exchanged.
 *
 * @param target    receives the text; see QXUTF8ToUTF16.
 * @param source    terminated UTF-16.
 * @param capacity  bytes of the target.
 */
QX_API int64_t QXUTF16ToUTF8(char* target, const wchar* source, int32_t capacity);

/**
 * Converts UTF-8 to UTF-16.
 *
 * @param target     receives the text; null with a capacity of 0 to ask for the length.
 * @param capacity   16-bit units of the target.
 * @param outLength  receives the length of the whole text, without terminator, also when it did not
 *                   fit; left alone after any other failure. May be null.
 * @param source     UTF-8.
 * @param length     bytes of the source, or -1.
 * @return `target`, also when the text did not fit; null after bad input or a bad argument.
 */
QX_API wchar* QXUTF8ToUTF16N(wchar* target, int32_t capacity, int32_t* outLength,
                             const char* source, int32_t length);

/**
 * Converts UTF-16 to UTF-8. As QXUTF8ToUTF16N, with the two forms exchanged.
 *
 * @param target     receives the text; see QXUTF8ToUTF16N.
 * @param capacity   bytes of the target.
 * @param outLength  as in QXUTF8ToUTF16N.
 * @param source     UTF-16.
 * @param length     16-bit units of the source, or -1.
 */
QX_API char* QXUTF16ToUTF8N(char* target, int32_t capacity, int32_t* outLength, const wchar* source,
                            int32_t length);

/**
 * Converts narrow text to wide text. Narrow text is UTF-8, or what the C runtime's locale says on
 * the reference platform; text in ASCII is converted without a look at anything else.
 *
 * @param target  receives the text, or null to ask for its length.
 * @param source  narrow text.
 * @param limit   units of the target; not looked at when it is null. The terminator is stored if it
 *                fits; a character that does not fit as a whole is not begun.
 * @return the units written, or needed, without the terminator. For ill-formed text the number of
 *         ASCII characters before its first other byte, less 1: all ones if there is none.
 */
QX_API size_t QXAnsiToUnicode(wchar* target, const char* source, size_t limit);

/**
 * Converts wide text to narrow text.
 *
 * @param target  receives the text, or null to ask for its length.
 * @param source  wide text.
 * @param limit   bytes of the target; not looked at when it is null. The terminator is stored if it
 *                fits; a character that does not fit as a whole is not begun.
 * @return the bytes written, or needed, without the terminator; all ones for ill-formed text.
 */
QX_API size_t QXUnicodeToAnsi(char* target, const wchar* source, size_t limit);

/**
 * Counts the code points of wide text; an unpaired surrogate counts as one.
 *
 * @param text  wide text; null counts as empty.
 * @return their number.
 */
QX_API int32_t QXCountCharUTF16(const wchar* text);

/**
 * Reads one code point and moves behind it. A terminator is a character like any other.
 *
 * @param cursor     in: the text; out: one or two units further.
 * @param unitsLeft  units of the text from the cursor on; all ones if there are enough.
 * @return the code point; an unpaired surrogate, or a pair of which one unit is left, gives that
 *         unit. 0, and the cursor stays, if no units are left; so does any other number from
 *         0x80000000 up.
 */
QX_API uint32_t QXNextCharUTF16(const wchar** cursor, uint32_t unitsLeft);

/**
 * Tells whether text begins with the bytes of QXUtf8BomStr. Nothing behind the first byte that
 * differs is read.
 *
 * @param text  terminated bytes.
 * @return 1 if it does, otherwise 0.
 */
QX_API int32_t QXIsUtf8BomStr(const char* text);

QX_END_DECLS

#endif

/**
 * @file
 * Text in named encodings, to wide text and back, by ICU's converters.
 *
 * A stream: open, set the substitution if wanted, any number of Convert calls, one Flush, close.
 * An object has no direction: the `ToW` and `FromW` open, close and substitution functions are the
 * same, and one object may convert both ways.
 *
 * An object carries the state of its conversion: one thread at a time may use it. Different
 * objects may be used at the same time.
 *
 * Results of all conversions here, by what ICU reports:
 * | ICU | result |
 * |---|---|
 * | success or a warning | QX_S_OK |
 * | invalid, truncated or illegal character | QX_E_ILLEGALCHAR |
 * | the target is full | QX_E_BUFFERTOOSMALL |
 * | any other failure | QX_E_FAIL |
 *
 * The open functions and QXEncConvert allocate: a failing allocation leaves them as the C++
 * exception std::bad_alloc. A C client that has to live through it calls them from C++ code.
 */
#ifndef QXCORE_CONVERTER_H
#define QXCORE_CONVERTER_H

#include <qxcore/result.h>

QX_BEGIN_DECLS

/** An open encoding. */
typedef struct QXEncConverter QXEncConverter;

/**
 * Tells ICU where its data is, and starts it. Needed only before the default encoding is opened,
 * that is, one without a name. To be called before any conversion, by one thread.
 *
 * @param dataDirectory  path of the data, narrow text, handed to ICU as it stands; "" for the data
 *                       that ICU was built with.
 * @return the number of converters that ICU offers. 0: it found none.
 */
QX_API int32_t QXEncUtilInit(const char* dataDirectory);

/**
 * Opens an encoding by name.
 *
 * A name that ICU does not know is looked up among "UTF-8", "CP1252", "CP932" and "SJIS", in this
 * spelling; one that is not among them opens as ISO-8859-1, and nothing tells. If not even that
 * opens, two lines on standard output tell so and the object has no converter: QXEncToW_Convert
 * then gives QX_E_NOCONVERTER and QXEncFromW_Convert ends the process.
 *
 * ICU keeps the tables of an encoding that was open once, so the first opening in a process is the
 * dear one.
 *
 * Until QXEncToW_SetSubstitutionChar is called, bad input is replaced as ICU does it by itself.
 *
 * @param encodingName  at most 127 units, of which the low byte counts; copied. Null for ICU's
 *                      default encoding: the object has no converter if QXEncUtilInit has not run,
 * or, with a line on standard output, if it does not open.
 * @return the object, never null. The caller owns it until QXEncToW_Close.
 */
QX_API QXEncConverter* QXEncToW_Open(const wchar* encodingName);
/** @copydoc QXEncToW_Open */
QX_API QXEncConverter* QXEncFromW_Open(const wchar* encodingName);

/**
 * Closes an encoding.
 *
 * @param converter  the object, which is gone afterwards; null is allowed and does nothing.
 */
QX_API void QXEncToW_Close(QXEncConverter* converter);
/** @copydoc QXEncToW_Close */
QX_API void QXEncFromW_Close(QXEncConverter* converter);

/**
 * Sets what becomes of bad input: a substitute for what the encoding cannot hold on the way from
 * wide text, or a stop in both directions. A stop is not undone by a later substitute.
 *
 * The substitute must exist in the encoding itself. U+FFFD does in none but the Unicode encodings:
 * for a legacy encoding, 0 gives QX_E_ILLEGALCHAR.
 *
 * @param converter  the object; one without a converter is left alone, with QX_S_OK.
 * @param codePoint  the substitute; 0 for U+FFFD; negative to stop with QX_E_ILLEGALCHAR at bad
 *                   input. Surrogates go to ICU as told.
 * @return QX_S_OK; QX_E_ILLEGALCHAR, and nothing is changed, from 0x10FFFF up (that one included)
 *         and for a substitute that the encoding does not have; QX_E_ABORT if the stop is refused;
 *         QX_E_FAIL.
 */
QX_API QXResult QXEncToW_SetSubstitutionChar(QXEncConverter* converter, int32_t codePoint);
/** @copydoc QXEncToW_SetSubstitutionChar */
QX_API QXResult QXEncFromW_SetSubstitutionChar(QXEncConverter* converter, int32_t codePoint);

/**
 * Converts to wide text. No terminator is added. A character that the source cuts off is kept for
 * the next call.
 *
 * @param converter    the object.
 * @param source       in: the bytes; out: behind the last one that was read, also on failure.
 * @param sourceLimit  behind the last byte.
 * @param target       in: where the text goes; out: behind what was written, also on failure.
 * @param targetLimit  behind the last unit of the target.
 * @return QX_S_OK: all was read. QX_E_BUFFERTOOSMALL: call again with more room, from where the
 *         cursors stand. QX_E_ILLEGALCHAR: bad input, and the source stands behind it.
 *         QX_E_NOCONVERTER; QX_E_FAIL.
 */
QX_API QXResult QXEncToW_Convert(QXEncConverter* converter, const char** source,
                                 const char* sourceLimit, wchar** target, wchar* targetLimit);

/**
 * Converts from wide text. No terminator is added. A lead surrogate at the end of the source is
 * kept for the next call.
 *
 * @param converter    the object. One without a converter ends the process (std::terminate).
 * @param source       in: the text; out: behind the last unit that was read, also on failure.
 * @param sourceLimit  behind the last unit.
 * @param target       in: where the bytes go; out: behind what was written, also on failure.
 * @param targetLimit  behind the last byte of the target.
 * @return as QXEncToW_Convert, but for QX_E_NOCONVERTER.
 */
QX_API QXResult QXEncFromW_Convert(QXEncConverter* converter, const wchar** source,
                                   const wchar* sourceLimit, char** target, char* targetLimit);

/**
 * Ends a conversion to wide text: writes what was kept and, unless it fails, makes the
 * object fit for a new text.
 *
 * @param converter    the object.
 * @param target       in: where the text goes; out: behind what was written, also on failure.
 * @param targetLimit  behind the last unit of the target.
 * @return QX_S_OK; QX_E_ILLEGALCHAR: bad input stops, and the text ended within a character;
 *         QX_E_BUFFERTOOSMALL: call again with more room; QX_E_NOCONVERTER; QX_E_FAIL.
 */
QX_API QXResult QXEncToW_Flush(QXEncConverter* converter, wchar** target, wchar* targetLimit);

/**
 * Ends a conversion from wide text: writes what was kept and, unless it fails, makes the
 * object fit for a new text.
 *
 * @param converter    the object. One without a converter ends the process (std::terminate).
 * @param target       in: where the bytes go; out: behind what was written, also on failure.
 * @param targetLimit  behind the last byte of the target.
 * @return as QXEncToW_Flush, but for QX_E_NOCONVERTER.
 */
QX_API QXResult QXEncFromW_Flush(QXEncConverter* converter, char** target, char* targetLimit);

/**
 * Converts a whole text from one encoding to another. Any thread may call. No terminator is added.
 *
 * Sizes go up to 0x7FFFFFFF; larger ones give QX_E_FAIL. After a failure, bytes of the target
 * behind the written ones may have changed. Source and target may be one buffer if no part of the
 * text grows: each piece of 1024 wide units is read before it is written.
 *
 * A target that is too small cannot be continued: *sourceSize may count bytes that did not reach
 * it. Try again with a larger one.
 *
 * @param source          the bytes.
 * @param sourceSize      in: their number; out: the bytes that were read.
 * @param sourceEncoding  as in QXEncToW_Open, with all that is said there of unknown names.
 * @param target          where the bytes go.
 * @param targetSize      in: its bytes; out: the bytes that were written.
 * @param targetEncoding  as in QXEncToW_Open. If it has no converter, the process ends
 *                        (std::terminate).
 * @param substitution    as in QXEncToW_SetSubstitutionChar, for both encodings: both must hold it.
 * @return QX_S_OK. The substitution's failure, with both sizes as they were: so 0 gives
 *         QX_E_ILLEGALCHAR if either encoding is not a Unicode one. QX_E_NOCONVERTER: the source
 *         encoding has no converter. QX_E_ILLEGALCHAR: bad input, or a text that ends within a
 *         character, when bad input stops. QX_E_BUFFERTOOSMALL; QX_E_FAIL.
 */
QX_API QXResult QXEncConvert(const void* source, size_t* sourceSize, const wchar* sourceEncoding,
                             void* target, size_t* targetSize, const wchar* targetEncoding,
                             int32_t substitution);

QX_END_DECLS

#endif

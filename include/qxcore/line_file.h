/**
 * @file
 * Text files in UTF-16, line by line, on ICU's streams.
 *
 * The file object is ICU's own, and null is the invalid one. The library of ICU that it comes from
 * is loaded at the first opening. A file belongs to one thread at a time.
 */
#ifndef QXCORE_LINE_FILE_H
#define QXCORE_LINE_FILE_H

#include <qxcore/base.h>

struct UFILE;

QX_BEGIN_DECLS

/**
 * Opens a file. Reading takes a byte-order mark of either order, and units with the high
 * byte first without one; writing begins with a mark.
 *
 * @param path  narrow; as the C library's fopen takes it.
 * @param mode  as for fopen; the file is always a binary one, and on Linux closed in a program that
 *              this process starts.
 * @return the file, which the caller closes with QXFileCloseUTF16; null if it cannot be opened,
 *         memory runs out, or ICU's library for streams is not there.
 */
QX_API struct UFILE* QXFileOpenUTF16(const char* path, const char* mode);

/**
 * Closes a file and writes what is not written yet.
 *
 * @param file  the file, or null.
 */
QX_API void QXFileCloseUTF16(struct UFILE* file);

/**
 * Reads a line without its line end.
 *
 * The line is cut at its first carriage return, line feed or zero unit, and what follows one that
 * stands inside it is lost. The other line ends of Unicode (U+000B, U+000C, U+0085, U+2028, U+2029)
 * end a line too, and stay in it. A line of `size` units or more comes in pieces.
 *
 * @param buffer  receives the line and its terminator.
 * @param size    16-bit units of the buffer.
 * @param file    the file.
 * @return the buffer; null at the end of the file.
 */
QX_API wchar* QXFileGetLineUTF16(wchar* buffer, int32_t size, struct UFILE* file);

/**
 * Writes a line, and behind it a carriage return and a line feed.
 *
 * @param line  wide text.
 * @param file  the file.
 * @return the 16-bit units that were taken, the two of the line end included. What the system did
 *         not take of them is not told.
 */
QX_API int32_t QXFileWriteLineUTF16(const wchar* line, struct UFILE* file);

QX_END_DECLS

#endif

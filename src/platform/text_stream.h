// Text files that are read line by line and written from their start.
#ifndef QX_PLATFORM_TEXT_STREAM_H
#define QX_PLATFORM_TEXT_STREAM_H

#include <text_stream_native.h>

#include "platform/types.h"

// In such a file a line end is a single line feed, whatever stands for it on disk. On every
// platform a carriage return in front of a line feed is dropped on reading, and a byte of 26 ends
// the text; a line end is written as the platform has it. Paths are narrow text.
//
// The back end defines
//
//     class TextReader {
//       public:
//         explicit TextReader(const char* path) noexcept;
//         ~TextReader();
//         bool IsOpen() const noexcept;
//         const char* ReadLine(char* line, int count) noexcept;
//     };
//
//     class TextWriter {
//       public:
//         explicit TextWriter(const char* path) noexcept;
//         ~TextWriter();
//         bool IsOpen() const noexcept;
//         void Write(std::string_view text) noexcept;
//         bool Modified(i64* seconds) noexcept;
//     };
//
// Construction opens the file, a writer's emptied or made; IsOpen tells whether that succeeded.
// Programs that are started do not inherit it. The posix side opens nothing but regular files for
// writing, and no pipe.
//
// ReadLine works as fgets: at most `count - 1` bytes, up to and with a line end, terminated. Null
// at the end of the text.
//
// Write puts text into a buffer that is written when it is full and when the writer is destroyed;
// nobody is told of a failure. Modified gives the time of the file's last change, in seconds since
// 1970, without writing the buffer out first. False if the system does not tell.
//
// An object belongs to one thread. Each operation may block on the file; the last error tells
// nothing.

namespace platform {

// The time of a file's last change, in seconds since 1970; false if there is no file or the system
// does not tell.
bool Modified(const char* path, i64* seconds) noexcept;

}  // namespace platform

#endif

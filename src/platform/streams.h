// The C library's streams.
#ifndef QX_PLATFORM_STREAMS_H
#define QX_PLATFORM_STREAMS_H

// The back end decides whether a mode without "b" translates line ends.
#include <streams_native.h>

#include <cstdio>

namespace platform {

// Opens a file by its narrow path, in a mode as for the C library. The stream is closed in programs
// that this process starts. Null on failure, with the last error. Blocks as the opening of a file
// does; the thread is not cancelled meanwhile.
std::FILE* fopen(const char* path, const char* mode) noexcept;

}  // namespace platform

#endif

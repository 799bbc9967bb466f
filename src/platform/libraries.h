// Shared libraries.
#ifndef QX_PLATFORM_LIBRARIES_H
#define QX_PLATFORM_LIBRARIES_H

#include <libraries_native.h>

namespace platform {

// The back end defines HMODULE, a pointer-sized handle.

// Opens a library, or counts one more opening of one that is open. A path with separators names a
// file, and `\` separates as `/` does; a bare name goes to the loader's search. Null on failure,
// and the last error is 126 (it, or a library that it needs, is not found), 193 (not a library),
// 127 (a symbol that it needs is missing), 5 or 14. Runs the library's own code, so it may do
// anything.
HMODULE LoadLibraryW(const char16_t* path) noexcept;

// Gives one opening up. False on failure: the last error is 126, or 6 for null. The system may
// keep the library.
bool FreeLibrary(HMODULE library) noexcept;

// Finds a symbol that the library itself exports. Null on failure: the last error is 127, or 126 if
// there is no such library. An empty name is never found.
void* GetProcAddress(HMODULE library, const char* name) noexcept;

}  // namespace platform

#endif

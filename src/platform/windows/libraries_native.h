#ifndef QX_PLATFORM_WINDOWS_LIBRARIES_NATIVE_H
#define QX_PLATFORM_WINDOWS_LIBRARIES_NATIVE_H

#include "system_headers.h"

namespace platform {

using ::HMODULE;

inline HMODULE LoadLibraryW(const char16_t* path) noexcept {
    return ::LoadLibraryW(Native(path));
}

inline bool FreeLibrary(HMODULE library) noexcept {
    return ::FreeLibrary(library) != 0;
}

inline void* GetProcAddress(HMODULE library, const char* name) noexcept {
    return reinterpret_cast<void*>(::GetProcAddress(library, name));
}

}  // namespace platform

#endif

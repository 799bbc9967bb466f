// The system's headers, without the parts that this library does not use and without the macros
// that collide with names of its own.
#ifndef QX_PLATFORM_WINDOWS_SYSTEM_HEADERS_H
#define QX_PLATFORM_WINDOWS_SYSTEM_HEADERS_H

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#undef CreateMutex
#undef GetObject

#include "platform/types.h"

namespace platform {

using ::HANDLE;

inline const WCHAR* Native(const char16_t* text) noexcept {
    return reinterpret_cast<const WCHAR*>(text);
}

inline WCHAR* Native(char16_t* text) noexcept {
    return reinterpret_cast<WCHAR*>(text);
}

inline DWORD* Native(u32* number) noexcept {
    return reinterpret_cast<DWORD*>(number);
}

}  // namespace platform

#endif

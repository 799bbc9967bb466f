#ifndef QX_PLATFORM_WINDOWS_SHARED_NATIVE_H
#define QX_PLATFORM_WINDOWS_SHARED_NATIVE_H

#include "security_native.h"
#include "system_headers.h"

namespace platform {

inline HANDLE CreateFileMappingW(HANDLE file, const SECURITY_ATTRIBUTES* attributes, u32 protection,
                                 u32 sizeHigh, u32 size, const char16_t* name) noexcept {
    return ::CreateFileMappingW(file, const_cast<SECURITY_ATTRIBUTES*>(attributes), protection,
                                sizeHigh, size, Native(name));
}

// The system leaves the last error as it was.
inline HANDLE OpenFileMappingW(u32 access, bool inherit, const char16_t* name) noexcept {
    ::SetLastError(0);
    return ::OpenFileMappingW(access, inherit, Native(name));
}

inline void* MapViewOfFile(HANDLE mapping, u32 access, u32 offsetHigh, u32 offset,
                           std::size_t size) noexcept {
    return ::MapViewOfFile(mapping, access, offsetHigh, offset, size);
}

inline bool UnmapViewOfFile(const void* address) noexcept {
    return ::UnmapViewOfFile(address) != 0;
}

}  // namespace platform

#endif

#ifndef QX_PLATFORM_WINDOWS_LIFETIME_NATIVE_H
#define QX_PLATFORM_WINDOWS_LIFETIME_NATIVE_H

#include "system_headers.h"

#define QX_ENTRY_CALL WINAPI

namespace platform {

using ModuleHandle = ::HINSTANCE;
using EntryWord = ::DWORD;

// The system has ended the other threads before it detaches anything at the end of a process.
inline bool OtherThreadsMayRun(const void*) noexcept {
    return false;
}

inline void SetForkGuards(void (*)(), void (*)()) noexcept {}

}  // namespace platform

#endif

// What the machine and its system are, and who the user is.
#ifndef QX_PLATFORM_SYSTEM_FIGURES_H
#define QX_PLATFORM_SYSTEM_FIGURES_H

// The back end defines MEMORYSTATUSEX, SYSTEM_INFO and OSVERSIONINFOA with the reference platform's
// field names; the first and the last tell their size in their first field, 64 and 148 bytes.
#include <system_figures_native.h>

#include "platform/types.h"

namespace platform {

// None of these blocks. A figure that the system does not tell is 0.

bool GlobalMemoryStatusEx(MEMORYSTATUSEX* status) noexcept;

void GetSystemInfo(SYSTEM_INFO* info) noexcept;

// False, with the last error, if the system does not tell its version.
bool GetVersionExA(OSVERSIONINFOA* version) noexcept;

// The user in whose name the process acts. `size` counts units and becomes the number of those
// stored, the terminator included, or of those needed. False with 122 if that is more than there is
// room for, with 14 without memory. May read the user database.
bool GetUserNameW(char16_t* buffer, u32* size) noexcept;

}  // namespace platform

#endif

#ifndef QX_PLATFORM_WINDOWS_PROCESSES_NATIVE_H
#define QX_PLATFORM_WINDOWS_PROCESSES_NATIVE_H

// The functions of the system's base library, and not of one of their own.
#define PSAPI_VERSION 2
#include "system_headers.h"
// Needs the system's types.
#include <psapi.h>
#undef GetProcessImageFileNameA

#include "security_native.h"

namespace platform {

using ::PROCESS_INFORMATION;
using ::STARTUPINFOW;

inline u32 GetCurrentProcessId() noexcept {
    return ::GetCurrentProcessId();
}

inline HANDLE GetCurrentProcess() noexcept {
    return ::GetCurrentProcess();
}

inline void GetStartupInfoW(STARTUPINFOW* startup) noexcept {
    ::GetStartupInfoW(startup);
}

inline bool CreatePipe(HANDLE* read, HANDLE* write, const SECURITY_ATTRIBUTES* attributes,
                       u32 size) noexcept {
    return ::CreatePipe(read, write, const_cast<SECURITY_ATTRIBUTES*>(attributes), size) != 0;
}

inline bool SetHandleInformation(HANDLE handle, u32 mask, u32 flags) noexcept {
    return ::SetHandleInformation(handle, mask, flags) != 0;
}

inline bool CreateProcessW(const char16_t* application, char16_t* commandLine,
                           const SECURITY_ATTRIBUTES* process, const SECURITY_ATTRIBUTES* thread,
                           bool inherit, u32 flags, void* environment, const char16_t* directory,
                           STARTUPINFOW* startup, PROCESS_INFORMATION* information) noexcept {
    return ::CreateProcessW(Native(application), Native(commandLine),
                            const_cast<SECURITY_ATTRIBUTES*>(process),
                            const_cast<SECURITY_ATTRIBUTES*>(thread), inherit, flags, environment,
                            Native(directory), startup, information) != 0;
}

inline bool GetExitCodeProcess(HANDLE process, u32* code) noexcept {
    return ::GetExitCodeProcess(process, Native(code)) != 0;
}

inline u32 WaitForMultipleObjects(u32 count, const HANDLE* handles, bool all,
                                  u32 milliseconds) noexcept {
    return ::WaitForMultipleObjects(count, handles, all, milliseconds);
}

inline HANDLE OpenProcess(u32 access, bool inherit, u32 id) noexcept {
    return ::OpenProcess(access, inherit, id);
}

inline u32 GetProcessImageFileNameA(HANDLE process, char* buffer, u32 size) noexcept {
    return ::K32GetProcessImageFileNameA(process, buffer, size);
}

}  // namespace platform

#endif

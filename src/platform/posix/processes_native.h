#ifndef QX_PLATFORM_POSIX_PROCESSES_NATIVE_H
#define QX_PLATFORM_POSIX_PROCESSES_NATIVE_H

#include <unistd.h>

#include "handles_native.h"

namespace platform {

struct STARTUPINFOW {
    u32 cb;
    u32 dwFlags;
    HANDLE hStdInput;
    HANDLE hStdOutput;
    HANDLE hStdError;
};

struct PROCESS_INFORMATION {
    HANDLE hProcess;
    HANDLE hThread;
};

inline u32 GetCurrentProcessId() noexcept {
    return static_cast<u32>(::getpid());
}

inline HANDLE GetCurrentProcess() noexcept {
    return kCurrentProcess;
}

inline void GetStartupInfoW(STARTUPINFOW* startup) noexcept {
    *startup = {};
    startup->cb = sizeof *startup;
}

}  // namespace platform

#endif

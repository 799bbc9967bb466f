// Child processes, and the pipes to their standard handles.
#ifndef QX_PLATFORM_PROCESSES_H
#define QX_PLATFORM_PROCESSES_H

#include <processes_native.h>

#include "platform/handles.h"
#include "platform/security.h"
#include "platform/types.h"

namespace platform {

// The back end defines STARTUPINFOW, of which cb, dwFlags and the three standard handles are used,
// and PROCESS_INFORMATION, with hProcess and hThread.

enum StartupFlag : u32 {
    kStartfUseStdHandles = 0x100,  // STARTF_USESTDHANDLES
};

u32 GetCurrentProcessId() noexcept;

// A pseudo handle of the calling process. To close it does nothing.
HANDLE GetCurrentProcess() noexcept;

// The settings that this process was started with, in a record that is zero and knows its size.
void GetStartupInfoW(STARTUPINFOW* startup) noexcept;

// A pipe, whose ends are closed as files are. `size` is 0. On the posix side no child inherits the
// ends, whatever `attributes` say: only the one that gets them as standard handles has them, so
// children that start at the same time do not hold each other's. False with 4 or 14.
bool CreatePipe(HANDLE* read, HANDLE* write, const SECURITY_ATTRIBUTES* attributes,
                u32 size) noexcept;

inline constexpr u32 kHandleFlagInherit = 1;  // HANDLE_FLAG_INHERIT

// Marks a file or a pipe's end for inheritance, or takes the mark away; `mask` is
// kHandleFlagInherit. False with 6.
bool SetHandleInformation(HANDLE handle, u32 mask, u32 flags) noexcept;

inline constexpr u32 kCreateUnicodeEnvironment = 0x400;  // CREATE_UNICODE_ENVIRONMENT

// Starts a program, which inherits what is marked for inheritance. The security records are null,
// `inherit` is true, `flags` kCreateUnicodeEnvironment. `commandLine` begins with `application`;
// `environment` is null for this process's own, or terminated texts one behind the other and a zero
// behind them; `directory` is null for this process's own. Standard handles count with
// kStartfUseStdHandles.
//
// The posix side runs `application` without ".exe" at its end if only that is there, splits the
// command line by the rules of the reference platform's C runtime, hands all three standard handles
// over whether marked or not, and gives the null device for a null one. Its hThread is a pseudo
// handle.
//
// The caller closes both handles. False with: 2 or 3 if the program is not there, 5 if it may not
// run or is a directory, 193 if it is no program, 267 if the directory is not there, 6 for a
// standard handle that is closed, 123 for text that is none, 206 for more arguments than the system
// takes, 4, 14 or 1450. Blocks until the program has taken the child over.
bool CreateProcessW(const char16_t* application, char16_t* commandLine,
                    const SECURITY_ATTRIBUTES* process, const SECURITY_ATTRIBUTES* thread,
                    bool inherit, u32 flags, void* environment, const char16_t* directory,
                    STARTUPINFOW* startup, PROCESS_INFORMATION* information) noexcept;

inline constexpr u32 kStillActive = 259;  // STILL_ACTIVE

// The exit code, or kStillActive. On the posix side 128 and its number for a signal that ended the
// process, and all ones for a child whose code the process has thrown away or collected elsewhere.
// False with 6. Does not block.
bool GetExitCodeProcess(HANDLE process, u32* code) noexcept;

inline constexpr u32 kMaximumWaitObjects = 64;  // MAXIMUM_WAIT_OBJECTS

// Waits for the end of one of several processes, as long as it takes: `all` is false,
// `milliseconds` all ones. Returns the lowest index of those that have ended, or kWaitFailed with
// 87 for no handle or more than kMaximumWaitObjects, 6 if one is closed.
u32 WaitForMultipleObjects(u32 count, const HANDLE* handles, bool all, u32 milliseconds) noexcept;

inline constexpr u32 kProcessQueryAndRead = 0x410;  // PROCESS_QUERY_INFORMATION | PROCESS_VM_READ

// A handle of any process, to ask for its image name. `access` is kProcessQueryAndRead, `inherit`
// false. Null with 87 if there is no such process, or 5.
HANDLE OpenProcess(u32 access, bool inherit, u32 id) noexcept;

// The file that a process runs, with `\` between the names; on the posix side names in front of
// what fits are left out. Returns the bytes without the terminator, or 0.
u32 GetProcessImageFileNameA(HANDLE process, char* buffer, u32 size) noexcept;

}  // namespace platform

#endif

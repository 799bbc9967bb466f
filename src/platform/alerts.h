// How a surprise reaches a human: the debugger's output, the event log, a box with three buttons.
#ifndef QX_PLATFORM_ALERTS_H
#define QX_PLATFORM_ALERTS_H

#include <alerts_native.h>

#include "platform/types.h"

namespace platform {

// ---- The debugger's output

// False where nobody can be reading it. May read a file; does not block.
bool DebugOutputIsRead() noexcept;

// Hands text to whoever reads the debugger's output; blocks as long as the reader does.
void OutputDebugStringW(const char16_t* text) noexcept;

// ---- The event log

using EventSource = void*;

constexpr u16 kEventInformation = 4;  // EVENTLOG_INFORMATION_TYPE

// Names the source of the entries. `server` is null; `source` stays until the source is given up.
EventSource RegisterEventSourceW(const char16_t* server, const char16_t* source) noexcept;

// Appends an entry with its insertion strings, any of which may be null. Category, event and data
// are 0 or null, and there is no user. Blocks as long as the log takes. False on failure.
bool ReportEventW(EventSource log, u16 type, u16 category, u32 event, void* user, u16 stringCount,
                  u32 dataSize, const char16_t** strings, void* data) noexcept;

bool DeregisterEventSource(EventSource log) noexcept;

// ---- The box

// Sessions are a matter of the reference platform: elsewhere the number is that of the caller's own
// session, and nobody reads it.
constexpr u32 kNoSession = 0xFFFFFFFF;

bool ProcessIdToSessionId(u32 process, u32* session) noexcept;

// The system's "WTSGetActiveConsoleSessionId", which gives kNoSession while nobody is at the
// console. Null if this system does not offer it.
using ConsoleSessionFunction = u32 (*)();
ConsoleSessionFunction FindConsoleSessionFunction() noexcept;

// Whether the system gives its first user session the number 1 and keeps 0 for services: its
// version by "GetVersionExA" is of the platform 2 and above 5.
bool ServicesHaveOwnSession() noexcept;

// The style of the box: abort, retry and ignore, with the sign for an error, in front of all else:
// MB_ABORTRETRYIGNORE, MB_ICONERROR, MB_TASKMODAL, MB_SETFOREGROUND.
constexpr u32 kBoxStyle = 0x12012;

enum Answer : u32 {
    kAnswerNone = 0,
    kAnswerAbort = 3,   // IDABORT
    kAnswerRetry = 4,   // IDRETRY
    kAnswerIgnore = 5,  // IDIGNORE
};

// Shows the box to the user of a session and waits for the answer, as long as it takes. `server` is
// null, the sizes are in bytes with the terminators, `timeout` is 0 and `wait` is true. False, and
// `answer` left alone, if nobody could be asked or nobody answered.
bool WTSSendMessageW(void* server, u32 session, const char16_t* title, u32 titleBytes,
                     const char16_t* text, u32 textBytes, u32 style, u32 timeout, u32* answer,
                     bool wait) noexcept;

// ---- The end

// The reference platform's number of the abort signal.
constexpr int kAbortSignal = 22;  // SIGABRT

// Runs the process's handler of the abort signal; with none set, ends the process with the status
// 3. Returns if the handler does, or if the process ignores the signal.
void raise(int signal);

}  // namespace platform

#endif

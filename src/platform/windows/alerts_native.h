#ifndef QX_PLATFORM_WINDOWS_ALERTS_NATIVE_H
#define QX_PLATFORM_WINDOWS_ALERTS_NATIVE_H

#include <signal.h>

#include "system_headers.h"
// Needs the system's types.
#include <wtsapi32.h>

namespace platform {

// Any process may listen, not a debugger alone.
inline bool DebugOutputIsRead() noexcept {
    return true;
}

inline void OutputDebugStringW(const char16_t* text) noexcept {
    ::OutputDebugStringW(Native(text));
}

inline void* RegisterEventSourceW(const char16_t* server, const char16_t* source) noexcept {
    return ::RegisterEventSourceW(Native(server), Native(source));
}

inline bool ReportEventW(void* log, u16 type, u16 category, u32 event, void* user, u16 stringCount,
                         u32 dataSize, const char16_t** strings, void* data) noexcept {
    return ::ReportEventW(log, type, category, event, user, stringCount, dataSize,
                          reinterpret_cast<const WCHAR**>(strings), data) != 0;
}

inline bool DeregisterEventSource(void* log) noexcept {
    return ::DeregisterEventSource(log) != 0;
}

inline bool ProcessIdToSessionId(u32 process, u32* session) noexcept {
    return ::ProcessIdToSessionId(process, Native(session)) != 0;
}

inline u32 (*FindConsoleSessionFunction() noexcept)() {
    const HMODULE base = ::GetModuleHandleW(L"KERNEL32.DLL");
    if (base == nullptr) {
        return nullptr;
    }
    return reinterpret_cast<u32 (*)()>(
        reinterpret_cast<void*>(::GetProcAddress(base, "WTSGetActiveConsoleSessionId")));
}

inline bool ServicesHaveOwnSession() noexcept {
    OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    return ::GetVersionExA(&version) != 0 && version.dwPlatformId == VER_PLATFORM_WIN32_NT &&
           version.dwMajorVersion > 5;
}

inline bool WTSSendMessageW(void* server, u32 session, const char16_t* title, u32 titleBytes,
                            const char16_t* text, u32 textBytes, u32 style, u32 timeout,
                            u32* answer, bool wait) noexcept {
    return ::WTSSendMessageW(server, session, const_cast<WCHAR*>(Native(title)), titleBytes,
                             const_cast<WCHAR*>(Native(text)), textBytes, style, timeout,
                             Native(answer), wait ? 1 : 0) != 0;
}

inline void raise(int signal) {
    ::raise(signal);
}

}  // namespace platform

#endif

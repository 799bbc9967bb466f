#include "core/alert_message.h"

#include <atomic>
#include <string>

#include "core/debug_lock.h"
#include "core/wide_format.h"
#include "platform/processes.h"

namespace {

// Found once, and kept for the life of the process.
constinit std::atomic<u32> s_alertSession = platform::kNoSession;

bool IsSessionKnown() {
    return s_alertSession.load(std::memory_order_relaxed) != platform::kNoSession;
}

void FindAlertSession() {
    DebugLock lock;
    if (!lock.IsHeld() || !IsSessionKnown()) {
        u32 own = 0;
        const auto consoleSession = platform::FindConsoleSessionFunction();
        platform::ProcessIdToSessionId(platform::GetCurrentProcessId(), &own);
        s_alertSession.store(
            ChooseAlertSession(own, consoleSession, platform::ServicesHaveOwnSession),
            std::memory_order_relaxed);
    }
    lock.Release();
}

u32 BytesOf(const wchar* text) {
    return static_cast<u32>((std::char_traits<wchar>::length(text) + 1) * sizeof *text);
}

}  // namespace

u32 ChooseAlertSession(u32 own, platform::ConsoleSessionFunction consoleSession,
                       bool (*servicesHaveOwnSession)() noexcept) {
    if (own != 0 || consoleSession == nullptr) {
        return own;
    }
    const u32 console = consoleSession();
    if (console != platform::kNoSession) {
        return console;
    }
    return servicesHaveOwnSession() ? 1 : 0;
}

u32 ShowAlertMessage(const wchar* caption, const wchar* text) {
    if (!IsSessionKnown()) {
        FindAlertSession();
    }
    wchar title[64];
    wchar body[512];
    Format(title, u"%ls [Process ID %d]", caption, platform::GetCurrentProcessId());
    Format(body, u"%ls\n\nPress retry to debug the application.", text);
    u32 answer = platform::kAnswerNone;
    platform::WTSSendMessageW(nullptr, s_alertSession.load(std::memory_order_relaxed), title,
                              BytesOf(title), body, BytesOf(body), platform::kBoxStyle, 0, &answer,
                              true);
    return answer;
}

// Assertions, alerts and trace. None of them has a guard: a failing debug mutex is thrown.
#include <qxcore/debug.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "core/alert_message.h"
#include "core/debug_lock.h"
#include "core/wide_format.h"
#include "platform/alerts.h"
#include "platform/threads.h"

// Written by the person at the debugger, who so ends the wait: `set var s_alertContinue = 1`. A
// plain number for that reason, and read as an atomic one.
constinit u32 s_alertContinue = 0;

namespace {

constinit std::atomic<u32> s_alertMethod = 0;

constexpr const wchar* kProductName = u"Kestrane Services";

void ReportAlertEvent(const wchar* title, const wchar* text) {
    const platform::EventSource log = platform::RegisterEventSourceW(nullptr, kProductName);
    const wchar* strings[] = {title, text};
    platform::ReportEventW(log, platform::kEventInformation, 0, 0, nullptr, 2, 0, strings, nullptr);
    platform::DeregisterEventSource(log);
}

void EndProcess() {
    platform::raise(platform::kAbortSignal);
    std::exit(3);
}

// Inline, so that the debugger stops right below the alert's caller.
[[gnu::always_inline]] inline void AskUser(const wchar* title, const wchar* text) {
    DebugLock lock;
    switch (ShowAlertMessage(title != nullptr ? title : u"QXErrorAlert", text)) {
        case platform::kAnswerAbort:
            EndProcess();
            break;
        case platform::kAnswerRetry:
            platform::DebugBreak();
            break;
        default:
            break;
    }
    lock.Release();
}

void WaitForDebugger() {
    const std::atomic_ref<u32> mayContinue(s_alertContinue);
    while (mayContinue.load(std::memory_order_relaxed) == 0) {
        platform::Sleep(0);
    }
    mayContinue.store(0, std::memory_order_relaxed);
}

// Narrow text where wide text is taken. It shows misread, but its end is found: there are zeros
// behind it.
class MisreadText {
  public:
    explicit MisreadText(const char* text) : m_isNull(text == nullptr) {
        if (!m_isNull) {
            std::memcpy(m_units, text, ::strnlen(text, sizeof m_units - sizeof(wchar)));
        }
    }
    const wchar* Get() const { return m_isNull ? nullptr : m_units; }

  private:
    bool m_isNull;
    wchar m_units[512] = {};
};

}  // namespace

void QXDebugBreak() {
    platform::DebugBreak();
}

QXResult QXErrorAlertSetMethod(uint32_t method) {
    s_alertMethod.store(method, std::memory_order_relaxed);
    return QX_S_OK;
}

void QXErrorAlert(uint32_t method, const wchar* title, const wchar* format, ...) {
    if (method == 0) {
        method = s_alertMethod.load(std::memory_order_relaxed);
    }
    if ((method & QX_ALERT_BREAK) != 0) {
        platform::DebugBreak();
    }
    wchar text[512];
    if ((method & (QX_ALERT_MESSAGE | QX_ALERT_EVENTLOG)) != 0) {
        std::va_list arguments;
        va_start(arguments, format);
        FormatList(text, format, arguments);
        va_end(arguments);
    }
    if ((method & QX_ALERT_EVENTLOG) != 0) {
        ReportAlertEvent(title, text);
    }
    if ((method & QX_ALERT_MESSAGE) != 0) {
        AskUser(title, text);
    }
    if ((method & QX_ALERT_WAIT) != 0) {
        WaitForDebugger();
    }
}

void QXTrace(const wchar* format, ...) {
    DebugLock lock;
    if (platform::DebugOutputIsRead()) {
        wchar text[512];
        Format(text, u"[%#x]", platform::GetCurrentThreadId());
        platform::OutputDebugStringW(text);
        std::va_list arguments;
        va_start(arguments, format);
        FormatList(text, format, arguments);
        va_end(arguments);
        platform::OutputDebugStringW(text);
    }
    lock.Release();
}

// The trace's `%s` asks for wide text and gets narrow text; the alert's `%hs` is right.
void QXAssert(const char* expression, const char* file, int32_t line) {
    QXTrace(u"\nQX_ASSERT(%s)\n %s:%d\n", MisreadText(expression).Get(), MisreadText(file).Get(),
            line);
    const bool hasMethod = s_alertMethod.load(std::memory_order_relaxed) != 0;
    QXErrorAlert(hasMethod ? 0 : QX_ALERT_BREAK, kProductName,
                 u"Kestrane Services Debug Assertion Failed!\n\nFile: %hs\nLine: %d\n\nExpression: "
                 u"%hs",
                 file, line, expression);
}

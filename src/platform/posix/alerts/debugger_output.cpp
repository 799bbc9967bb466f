// Standard error, while a debugger is attached to the process.
#include <fcntl.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <new>
#include <optional>
#include <string_view>

#include "descriptors.h"
#include "narrow_text.h"
#include "platform/alerts.h"
#include "platform/cancellation.h"
#include "platform/errors.h"
#include "platform/processes.h"
#include "write_signals.h"

namespace platform {
namespace {

// The moment at which the kernel was last asked for a tracer, in the coarse clock's nanoseconds,
// and behind it a bit for the answer. Asking costs a few system calls, so it is done once for each
// step of that clock: a debugger that has been attached is noticed within milliseconds, and a
// program that traces much loses next to nothing.
constinit std::atomic<u64> s_lastAnswer = 0;

// The process that asked: a forked child does not inherit the tracer.
constinit std::atomic<u32> s_asker = 0;

u64 CoarseNanoseconds() noexcept {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return static_cast<u64>(now.tv_sec) * 1'000'000'000 + static_cast<u64>(now.tv_nsec);
}

// Nothing if the kernel does not say.
std::optional<bool> HasTracer() noexcept {
    const int file = AboveStandardStreams(::open("/proc/self/status", O_RDONLY | O_CLOEXEC));
    if (file < 0) {
        return std::nullopt;
    }
    char content[1024];
    const ssize_t size = ::read(file, content, sizeof content);
    ::close(file);
    const std::string_view status(content, size > 0 ? static_cast<std::size_t>(size) : 0);
    // A line break in the process's name, which comes first, is written as two characters.
    constexpr std::string_view kField = "\nTracerPid:\t";
    const std::size_t field = status.find(kField);
    if (field == status.npos || field + kField.size() == status.size()) {
        return std::nullopt;
    }
    return status[field + kField.size()] != '0';
}

// A closed pipe is no reason to die.
void WriteToStandardError(std::string_view text) noexcept {
    const WriteSignalsHeld signalsHeld;
    while (!text.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
        if (written > 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return;
        }
    }
}

}  // namespace

bool DebugOutputIsRead() noexcept {
    const ErrnoKeeper keepErrno;
    const u64 now = CoarseNanoseconds();
    const u64 last = s_lastAnswer.load(std::memory_order_relaxed);
    const u32 process = GetCurrentProcessId();
    if (last >> 1 == now && s_asker.load(std::memory_order_relaxed) == process) {
        return (last & 1) != 0;
    }
    const CancellationOff cancellationOff;
    const std::optional<bool> answer = HasTracer();
    if (answer) {
        s_asker.store(process, std::memory_order_relaxed);
        s_lastAnswer.store(now << 1 | (*answer ? 1 : 0), std::memory_order_relaxed);
    }
    return answer.value_or(false);
}

void OutputDebugStringW(const char16_t* text) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff cancellationOff;
    if (!DebugOutputIsRead()) {
        return;
    }
    try {
        WriteToStandardError(NarrowText(text));
    } catch (const std::bad_alloc&) {
        // Nobody is told.
    }
}

}  // namespace platform

#include "started_process.h"

#include <poll.h>
#include <sys/wait.h>

#include <atomic>

#include "platform/processes.h"
#include "platform/sync.h"

namespace platform {
namespace {

constexpr u32 kUnknownCode = 0xFFFFFFFF;
constexpr u32 kFirstSignalCode = 128;

constinit CRITICAL_SECTION s_lock;
constinit StartedProcess* s_givenUp = nullptr;
constinit std::atomic<bool> s_anyGivenUp{false};

class Hold {
  public:
    Hold() noexcept { LockStartedProcesses(); }
    ~Hold() { UnlockStartedProcesses(); }
    Hold(const Hold&) = delete;
    Hold& operator=(const Hold&) = delete;
};

bool HasEnded(int process) noexcept {
    pollfd polled = {process, POLLIN, 0};
    return ::poll(&polled, 1, 0) > 0;
}

u32 CodeOf(const siginfo_t& ended) noexcept {
    const u32 status = static_cast<u32>(ended.si_status);
    return ended.si_code == CLD_EXITED ? status : kFirstSignalCode + status;
}

}  // namespace

void LockStartedProcesses() noexcept {
    EnterCriticalSection(&s_lock);
}

void UnlockStartedProcesses() noexcept {
    LeaveCriticalSection(&s_lock);
}

// It is nobody's child, or another process's after a fork, when there is nothing to wait for.
void StartedProcess::Collect() noexcept {
    siginfo_t ended = {};
    if (::waitid(P_PIDFD, static_cast<id_t>(Descriptor()), &ended, WEXITED | WNOHANG) != 0) {
        m_hasEnded = HasEnded(Descriptor());
        m_exitCode = kUnknownCode;
    } else if (ended.si_pid != 0) {
        m_hasEnded = true;
        m_exitCode = CodeOf(ended);
    }
}

u32 StartedProcess::ExitCode() noexcept {
    const Hold hold;
    if (!m_hasEnded) {
        Collect();
    }
    return m_hasEnded ? m_exitCode : kStillActive;
}

void StartedProcess::CollectListed() noexcept {
    std::unique_ptr<StartedProcess> rest(std::exchange(s_givenUp, nullptr));
    while (rest != nullptr) {
        std::unique_ptr<StartedProcess> each = std::move(rest);
        rest = std::move(each->m_next);
        each->Collect();
        if (!each->m_hasEnded) {
            each->m_next.reset(s_givenUp);
            s_givenUp = each.release();
        }
    }
    s_anyGivenUp.store(s_givenUp != nullptr, std::memory_order_relaxed);
}

void StartedProcess::GiveUp(std::unique_ptr<StartedProcess> process) noexcept {
    const Hold hold;
    if (process->m_process && !process->m_hasEnded) {
        process->m_next.reset(s_givenUp);
        s_givenUp = process.release();
    }
    CollectListed();
}

void StartedProcess::CollectGivenUp() noexcept {
    if (s_anyGivenUp.load(std::memory_order_relaxed)) {
        const Hold hold;
        CollectListed();
    }
}

}  // namespace platform

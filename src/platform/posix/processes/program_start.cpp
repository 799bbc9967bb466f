#include "program_start.h"

#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cstdint>

// What runs in the child shares its parent's memory and thread, so nothing may keep books of it:
// system calls alone, and none of the sanitizers' checks.
#define QX_IN_CHILD __attribute__((no_sanitize("address"), no_sanitize("thread")))

namespace platform {
namespace {

constexpr std::size_t kStackSize = std::size_t{16} << 10;

struct Launch {
    const ProgramStart& m_start;
    int m_error = 0;  // the child's
};

// The kernel's records, all of them at least as large; zero is the default disposition, and no
// signal in a set.
constexpr std::uint64_t kDefaultAction[8] = {};
constexpr std::uint64_t kNoSignals[2] = {};
constexpr std::size_t kSignalSetSize = _NSIG / 8;

// The handlers are the parent's: none may run here.
QX_IN_CHILD void ResetSignals() noexcept {
    for (int signal = 1; signal < _NSIG; ++signal) {
        ::syscall(SYS_rt_sigaction, signal, kDefaultAction, nullptr, kSignalSetSize);
    }
    ::syscall(SYS_rt_sigprocmask, SIG_SETMASK, kNoSignals, nullptr, kSignalSetSize);
}

// The sources are above the targets, so that none is written over before its turn.
QX_IN_CHILD bool TakeStandardHandles(const ProgramStart& start) noexcept {
    for (int target = STDIN_FILENO; target <= STDERR_FILENO; ++target) {
        const int source = start.m_standard[target];
        if (source >= 0 && ::syscall(SYS_dup3, source, target, 0) < 0) {
            return false;
        }
    }
    return true;
}

QX_IN_CHILD bool EnterDirectory(int directory) noexcept {
    return directory < 0 || ::syscall(SYS_fchdir, directory) == 0;
}

// The parent sleeps until the program runs or this returns.
QX_IN_CHILD int RunChild(void* argument) noexcept {
    Launch& launch = *static_cast<Launch*>(argument);
    const ProgramStart& start = launch.m_start;
    if (TakeStandardHandles(start) && EnterDirectory(start.m_directory)) {
        ResetSignals();
        ::syscall(SYS_execve, start.m_path, start.m_arguments, start.m_environment);
    }
    launch.m_error = errno;
    return 127;
}

class AllSignalsHeld {
  public:
    AllSignalsHeld() noexcept {
        ::sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_BLOCK, &all, &m_before);
    }
    ~AllSignalsHeld() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    AllSignalsHeld(const AllSignalsHeld&) = delete;
    AllSignalsHeld& operator=(const AllSignalsHeld&) = delete;

  private:
    ::sigset_t m_before;
};

int Clone(Launch* launch, int* process) noexcept {
    alignas(16) char stack[kStackSize];
    constexpr int kFlags = CLONE_VM | CLONE_VFORK | CLONE_PIDFD | SIGCHLD;
    const AllSignalsHeld inChild;
    const pid_t id = ::clone(RunChild, stack + sizeof stack, kFlags, launch, process);
    return id < 0 ? errno : launch->m_error;
}

// A full table leaves it where it is: the process is there already.
OwnedDescriptor AboveStandardStreamsIfPossible(OwnedDescriptor process) noexcept {
    if (process.Get() > STDERR_FILENO) {
        return process;
    }
    OwnedDescriptor moved(::fcntl(process.Get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    return moved ? std::move(moved) : std::move(process);
}

void CollectFailedChild(const OwnedDescriptor& process) noexcept {
    siginfo_t ended;
    while (process && ::waitid(P_PIDFD, static_cast<id_t>(process.Get()), &ended, WEXITED) != 0 &&
           errno == EINTR) {
    }
}

}  // namespace

int StartProgram(const ProgramStart& start, OwnedDescriptor* process) noexcept {
    Launch launch = {start};
    int descriptor = -1;
    const int error = Clone(&launch, &descriptor);
    OwnedDescriptor started(descriptor);
    if (error != 0) {
        CollectFailedChild(started);
        return error;
    }
    *process = AboveStandardStreamsIfPossible(std::move(started));
    return 0;
}

}  // namespace platform

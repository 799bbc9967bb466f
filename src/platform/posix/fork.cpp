#include "fork.h"

#include <pthread.h>
#include <sys/single_threaded.h>
#include <time.h>

#include <atomic>

#include "calendar_lifetime.h"
#include "checked_handles.h"
#include "platform/lifetime.h"
#include "platform/threads.h"
#include "processes/started_process.h"
#include "registry_lifetime.h"
#include "shared/view_table.h"
#include "thread_object.h"
#include "waiting/wait_queue.h"

extern "C" [[gnu::visibility("hidden")]] char __dso_handle;
extern "C" void __cxa_finalize(void* module);

namespace platform {
namespace {

constinit ForkGuard s_beforeFork = nullptr;
constinit ForkGuard s_afterFork = nullptr;

void Call(ForkGuard guard) {
    if (guard != nullptr) {
        guard();
    }
}

// The forks that are between the handlers, and whether the library goes. A fork counts itself
// before it asks whether the library goes, and the unloading says so before it asks for the count:
// both in one total order, so that at least one sees the other.
constinit std::atomic<u32> s_forksUnderWay{0};
constinit std::atomic<bool> s_libraryGoes{false};

// Whether the calling thread's fork holds what the handlers hold.
[[gnu::tls_model("initial-exec")]] constinit thread_local bool t_takesPart = false;

// A handler of another library, between ours, may itself wait for the unloading.
constexpr int kMostPauses = 5'000;
// A thread that took the handler's address before it was withdrawn has come in by then.
constexpr int kQuietPauses = 50;
constexpr timespec kPause{.tv_sec = 0, .tv_nsec = 1'000'000};

void BeforeFork() {
    s_forksUnderWay.fetch_add(1);
    t_takesPart = !s_libraryGoes.load();
    if (!t_takesPart) {
        s_forksUnderWay.fetch_sub(1);
        return;
    }
    Call(s_beforeFork);
    CloseRegistryStoresForFork();
    HoldCalendarForFork();
    LockStartedProcesses();
    LockCheckedHandles();
    LockViews();
}

void LetGo() {
    UnlockViews();
    UnlockCheckedHandles();
    UnlockStartedProcesses();
    FreeCalendarAfterFork();
    FreeRegistryStoresAfterFork();
    Call(s_afterFork);
    t_takesPart = false;
}

void AfterForkInParent() {
    if (t_takesPart) {
        LetGo();
        s_forksUnderWay.fetch_sub(1);
    }
}

// The child's only thread has a new number.
void AfterForkInChild() {
    t_threadId = 0;
    ForgetInheritedWaiters();
    ForgetInheritedThreads();
    ForgetInheritedRegistryUsers();
    if (t_takesPart) {
        LetGo();
    }
    s_forksUnderWay.store(0);
    s_libraryGoes.store(false);
}

}  // namespace

void InstallForkHandlers() noexcept {
    ::pthread_atfork(BeforeFork, AfterForkInParent, AfterForkInChild);
}

void EndForkHandling() noexcept {
    s_libraryGoes.store(true);
    __cxa_finalize(&__dso_handle);
    if (__libc_single_threaded) {
        return;
    }
    int quiet = 0;
    for (int pause = 0; quiet < kQuietPauses && pause < kMostPauses; ++pause) {
        ::nanosleep(&kPause, nullptr);
        quiet = s_forksUnderWay.load() == 0 ? quiet + 1 : 0;
    }
}

void SetForkGuards(ForkGuard before, ForkGuard after) noexcept {
    s_beforeFork = before;
    s_afterFork = after;
}

}  // namespace platform

#include "fork.h"

#include <pthread.h>

#include "calendar_lifetime.h"
#include "checked_handles.h"
#include "platform/lifetime.h"
#include "platform/threads.h"
#include "registry_lifetime.h"
#include "shared/view_table.h"
#include "thread_object.h"
#include "waiting/wait_queue.h"

namespace platform {
namespace {

constinit ForkGuard s_beforeFork = nullptr;
constinit ForkGuard s_afterFork = nullptr;

void Call(ForkGuard guard) {
    if (guard != nullptr) {
        guard();
    }
}

void BeforeFork() {
    Call(s_beforeFork);
    CloseRegistryStoresForFork();
    HoldCalendarForFork();
    LockCheckedHandles();
    LockViews();
}

void AfterForkInParent() {
    UnlockViews();
    UnlockCheckedHandles();
    FreeCalendarAfterFork();
    FreeRegistryStoresAfterFork();
    Call(s_afterFork);
}

// The child's only thread has a new number.
void AfterForkInChild() {
    t_threadId = 0;
    ForgetInheritedWaiters();
    ForgetInheritedThreads();
    AfterForkInParent();
}

}  // namespace

void InstallForkHandlers() noexcept {
    ::pthread_atfork(BeforeFork, AfterForkInParent, AfterForkInChild);
}

void SetForkGuards(ForkGuard before, ForkGuard after) noexcept {
    s_beforeFork = before;
    s_afterFork = after;
}

}  // namespace platform

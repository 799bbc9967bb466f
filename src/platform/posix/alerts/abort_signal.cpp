#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include "platform/alerts.h"

namespace platform {

// The reference platform ends a process whose abort signal nobody handles as an exit with a status,
// and calls no exit handlers. It knows no blocked signals.
void raise(int) {
    constexpr int kAbortStatus = 3;
    struct sigaction action;
    ::sigaction(SIGABRT, nullptr, &action);
    if (action.sa_handler == SIG_DFL) {
        ::_exit(kAbortStatus);
    }
    ::sigset_t abortSignal;
    ::sigemptyset(&abortSignal);
    ::sigaddset(&abortSignal, SIGABRT);
    ::pthread_sigmask(SIG_UNBLOCK, &abortSignal, nullptr);
    ::raise(SIGABRT);
}

}  // namespace platform

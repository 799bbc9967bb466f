#include "write_signals.h"

#include <pthread.h>

#include <initializer_list>

#include "platform/errors.h"

namespace platform {

WriteSignalsHeld::WriteSignalsHeld() noexcept {
    ::sigset_t pending;
    ::sigpending(&pending);
    ::sigemptyset(&m_ours);
    for (const int signal : {SIGPIPE, SIGXFSZ}) {
        if (::sigismember(&pending, signal) == 0) {
            ::sigaddset(&m_ours, signal);
        }
    }
    ::pthread_sigmask(SIG_BLOCK, &m_ours, &m_before);
}

WriteSignalsHeld::~WriteSignalsHeld() {
    ErrnoKeeper keepErrno;
    constexpr timespec kAtOnce{};
    while (::sigtimedwait(&m_ours, nullptr, &kAtOnce) >= 0) {
    }
    ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
}

}  // namespace platform

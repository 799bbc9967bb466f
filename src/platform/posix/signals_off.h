// Keeps signal handlers from interrupting an operation.
#ifndef QX_PLATFORM_POSIX_SIGNALS_OFF_H
#define QX_PLATFORM_POSIX_SIGNALS_OFF_H

#include <pthread.h>
#include <signal.h>

namespace platform {

// A handler may fork, and a fork in the middle of an operation would copy what is half done. The
// signals that the thread raises itself by a fault stay: held back, they would end the process
// without their handler.
class SignalsOff {
  public:
    SignalsOff() noexcept {
        sigset_t signals;
        ::sigfillset(&signals);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGSYS}) {
            ::sigdelset(&signals, fault);
        }
        ::pthread_sigmask(SIG_SETMASK, &signals, &m_before);
    }
    ~SignalsOff() { ::pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsOff(const SignalsOff&) = delete;
    SignalsOff& operator=(const SignalsOff&) = delete;

  private:
    sigset_t m_before;
};

}  // namespace platform

#endif

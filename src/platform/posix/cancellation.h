// Keeps a thread from being cancelled in the middle of an operation.
#ifndef QX_PLATFORM_POSIX_CANCELLATION_H
#define QX_PLATFORM_POSIX_CANCELLATION_H

#include <pthread.h>

namespace platform {

class CancellationOff {
  public:
    CancellationOff() noexcept { ::pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &m_before); }
    ~CancellationOff() { ::pthread_setcancelstate(m_before, nullptr); }
    CancellationOff(const CancellationOff&) = delete;
    CancellationOff& operator=(const CancellationOff&) = delete;

  private:
    int m_before;
};

}  // namespace platform

#endif

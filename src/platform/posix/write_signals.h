// Holds the signals that a failing write sends to its thread.
#ifndef QX_PLATFORM_POSIX_WRITE_SIGNALS_H
#define QX_PLATFORM_POSIX_WRITE_SIGNALS_H

#include <signal.h>

namespace platform {

// Blocks them in the calling thread, and throws away in the end those that came meanwhile.
class WriteSignalsHeld {
  public:
    WriteSignalsHeld() noexcept;
    ~WriteSignalsHeld();
    WriteSignalsHeld(const WriteSignalsHeld&) = delete;
    WriteSignalsHeld& operator=(const WriteSignalsHeld&) = delete;

  private:
    ::sigset_t m_before;
    ::sigset_t m_ours;  // not pending before
};

}  // namespace platform

#endif

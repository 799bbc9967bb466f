// Children of this process. One that was given up while it ran is collected at one of the next
// calls, so that it does not stay in the system's table when it has ended.
//
// The records of all children and the list of those that were given up have one lock.
#ifndef QX_PLATFORM_POSIX_PROCESSES_STARTED_PROCESS_H
#define QX_PLATFORM_POSIX_PROCESSES_STARTED_PROCESS_H

#include <memory>

#include "../descriptors.h"
#include "platform/types.h"

namespace platform {

class StartedProcess {
  public:
    // Made before there is a process, when nothing is lost if it fails.
    void SetDescriptor(OwnedDescriptor process) noexcept { m_process = std::move(process); }

    // Can be read from when the process has ended.
    int Descriptor() const noexcept { return m_process.Get(); }

    // See GetExitCodeProcess. The system tells it once, so it is kept.
    u32 ExitCode() noexcept;

    static void GiveUp(std::unique_ptr<StartedProcess> process) noexcept;
    static void CollectGivenUp() noexcept;

  private:
    void Collect() noexcept;
    static void CollectListed() noexcept;

    OwnedDescriptor m_process;
    u32 m_exitCode;
    bool m_hasEnded = false;
    std::unique_ptr<StartedProcess> m_next;
};

// Round a fork.
void LockStartedProcesses() noexcept;
void UnlockStartedProcesses() noexcept;

}  // namespace platform

#endif

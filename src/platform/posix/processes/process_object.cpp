#include "process_object.h"

#include <poll.h>

#include <optional>

#include "../cancellation.h"
#include "platform/errors.h"
#include "platform/processes.h"

namespace platform {
namespace {

// The lowest index of those that have ended, or kWaitFailed.
u32 WaitForEnd(pollfd* processes, u32 count) noexcept {
    while (::poll(processes, count, -1) < 0) {
        if (errno != EINTR) {
            SetLastError(NativeErrorFromErrno(errno));
            return kWaitFailed;
        }
    }
    u32 index = 0;
    while (processes[index].revents == 0) {
        ++index;
    }
    return index;
}

pollfd EndOf(const ProcessReference& process) noexcept {
    return {process->Process().Descriptor(), POLLIN, 0};
}

}  // namespace

ProcessObject::~ProcessObject() {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    StartedProcess::GiveUp(std::move(m_process));
}

u32 ProcessObject::Wait(u32) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    StartedProcess::CollectGivenUp();
    pollfd process = {m_process->Descriptor(), POLLIN, 0};
    return WaitForEnd(&process, 1);
}

ProcessReference::ProcessReference(HANDLE handle) noexcept
    : m_reference(handle), m_process(dynamic_cast<ProcessObject*>(m_reference.Get())) {
    if (m_process == nullptr) {
        SetLastError(kErrorInvalidHandle);
    }
}

bool GetExitCodeProcess(HANDLE handle, u32* code) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    if (handle == kCurrentProcess) {
        *code = kStillActive;
        return true;
    }
    StartedProcess::CollectGivenUp();
    const ProcessReference process(handle);
    if (!process) {
        return false;
    }
    *code = process->Process().ExitCode();
    return true;
}

u32 WaitForMultipleObjects(u32 count, const HANDLE* handles, bool, u32) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    StartedProcess::CollectGivenUp();
    if (count == 0 || count > kMaximumWaitObjects) {
        SetLastError(kErrorInvalidParameter);
        return kWaitFailed;
    }
    std::optional<ProcessReference> references[kMaximumWaitObjects];
    pollfd processes[kMaximumWaitObjects];
    for (u32 index = 0; index < count; ++index) {
        if (!references[index].emplace(handles[index])) {
            return kWaitFailed;
        }
        processes[index] = EndOf(*references[index]);
    }
    return WaitForEnd(processes, count);
}

}  // namespace platform

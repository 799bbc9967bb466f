// On which processors a thread may run. The mask has the first 64; the kernel may know of more.
#include <sched.h>
#include <unistd.h>

#include <atomic>
#include <cstring>

#include "platform/errors.h"
#include "platform/threads.h"

namespace platform {
namespace {

// What the process may use: what its first thread might when this was asked first.
constinit std::atomic<u64> s_processMask{0};

// 0 if it cannot be found out. 8192 is the most that any kernel is built for.
u64 MaskOf(pid_t task) noexcept {
    u64 words[8192 / 64] = {};
    const bool known =
        ::sched_getaffinity(task, sizeof words, reinterpret_cast<cpu_set_t*>(words)) == 0;
    return known ? words[0] : 0;
}

bool SetMask(u64 mask) noexcept {
    return ::sched_setaffinity(0, sizeof mask, reinterpret_cast<const cpu_set_t*>(&mask)) == 0;
}

u64 ProcessMask() noexcept {
    u64 mask = s_processMask.load(std::memory_order_relaxed);
    if (mask == 0) {
        mask = MaskOf(::getpid());
        s_processMask.store(mask, std::memory_order_relaxed);
    }
    return mask;
}

// The kernel takes what is left of a mask within the processors of the thread's control group.
bool SetWholeMask(u64 mask, u64 before) noexcept {
    if (!SetMask(mask)) {
        return false;
    }
    if (MaskOf(0) == mask) {
        return true;
    }
    SetMask(before);
    return false;
}

}  // namespace

u64 SetThreadAffinityMask(HANDLE, u64 mask) noexcept {
    const ErrnoKeeper keepErrno;
    const u64 before = MaskOf(0);
    if (mask == 0 || (mask & ~ProcessMask()) != 0 || !SetWholeMask(mask, before)) {
        SetLastError(kErrorInvalidParameter);
        return 0;
    }
    return before;
}

}  // namespace platform

#include "thread_object.h"

#include <climits>

#include "cancellation.h"
#include "futex.h"
#include "platform/errors.h"
#include "platform/handles.h"
#include "platform/threads.h"

namespace platform {
namespace {

constexpr u32 kStillActive = 259;

// How many forks lie between the first process and this one.
constinit std::atomic<u32> s_generation{0};

}  // namespace

void ForgetInheritedThreads() noexcept {
    s_generation.fetch_add(1, std::memory_order_relaxed);
}

ThreadObject::ThreadObject() noexcept
    : m_generation(s_generation.load(std::memory_order_relaxed)) {}

ThreadObject::~ThreadObject() {
    if (m_state.load(std::memory_order_relaxed) == kRunning && !IsInherited()) {
        ::pthread_detach(m_thread);
    }
}

bool ThreadObject::IsInherited() const noexcept {
    return m_generation != s_generation.load(std::memory_order_relaxed);
}

void ThreadObject::Join() noexcept {
    void* result = nullptr;
    ::pthread_join(m_thread, &result);
    m_exitCode = static_cast<u32>(reinterpret_cast<std::uintptr_t>(result));
    m_state.store(kJoined, std::memory_order_release);
    FutexWake(&m_state, INT_MAX);
}

u32 ThreadObject::Wait(u32) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff stay;
    if (IsInherited()) {
        SetLastError(kErrorInvalidHandle);
        return kWaitFailed;
    }
    if (::pthread_equal(m_thread, ::pthread_self()) != 0) {
        Sleep(kInfinite);
    }
    u32 state = kRunning;
    if (m_state.compare_exchange_strong(state, kJoining, std::memory_order_acquire)) {
        Join();
        return kWaitObject0;
    }
    while (m_state.load(std::memory_order_acquire) != kJoined) {
        FutexWait(&m_state, kJoining);
    }
    return kWaitObject0;
}

u32 ThreadObject::ExitCode() const noexcept {
    return m_state.load(std::memory_order_acquire) == kJoined ? m_exitCode : kStillActive;
}

}  // namespace platform

// A recursive lock on a futex word.
//
// A thread that ends while it holds a lock leaves it to nobody; the next thread whose storage comes
// to stand at the same address would take it for its own.
//
// m_state is the lock: 0 free, 1 held, 2 held and somebody may sleep on it. Anybody may write it:
//   Enter   0 -> 1 (acquire), or in the slow path any -> 2 (acquire when it was 0)
//   Leave   1 or 2 -> 0 (release), and one wake-up when it was 2
// The acquire of the one pairs with the release of the other, so all that the last holder wrote is
// seen by the next. m_owner and m_recursion are written by the holder alone, m_owner before the
// lock is let go. Others read m_owner to learn whether they are the holder: the only value that can
// answer yes is one that this same thread wrote, so relaxed order is enough. m_recursion is atomic
// only because a release by a stranger is no fault that may tear it.
//
// While the C library knows of one thread only, the lock word needs no locked instruction: a second
// thread cannot come into being in the middle of Enter or Leave, and starting it orders all before.
#ifndef QX_PLATFORM_POSIX_CRITICAL_SECTION_NATIVE_H
#define QX_PLATFORM_POSIX_CRITICAL_SECTION_NATIVE_H

#include <sys/single_threaded.h>

#include <atomic>
#include <cstdint>

namespace platform {

// Its address names the calling thread. It survives fork, as the locks that the thread holds do.
extern constinit thread_local char t_threadMark
    [[gnu::tls_model("initial-exec"), gnu::visibility("hidden")]];

struct CRITICAL_SECTION {
    std::atomic<std::uint32_t> m_state{0};
    std::atomic<std::uint32_t> m_recursion{0};  // holds beyond the first
    std::atomic<const char*> m_owner{nullptr};
    std::uint32_t m_spinCount = 0;
    std::atomic<std::uint32_t> m_contentionCount{0};  // times that an Enter had to block
};

void EnterContendedCriticalSection(CRITICAL_SECTION* section) noexcept;
void WakeCriticalSectionWaiter(CRITICAL_SECTION* section) noexcept;

namespace detail {

inline bool TakeFreeLock(std::atomic<std::uint32_t>& state) noexcept {
    std::uint32_t free = 0;
    if (__libc_single_threaded) {
        if (state.load(std::memory_order_relaxed) != free) {
            return false;
        }
        state.store(1, std::memory_order_relaxed);
        return true;
    }
    return state.compare_exchange_strong(free, 1, std::memory_order_acquire,
                                         std::memory_order_relaxed);
}

inline std::uint32_t FreeLock(std::atomic<std::uint32_t>& state) noexcept {
    if (__libc_single_threaded) {
        const std::uint32_t old = state.load(std::memory_order_relaxed);
        state.store(0, std::memory_order_relaxed);
        return old;
    }
    return state.exchange(0, std::memory_order_release);
}

inline bool EnterIfHeldByCaller(CRITICAL_SECTION* section) noexcept {
    if (section->m_owner.load(std::memory_order_relaxed) != &t_threadMark) {
        return false;
    }
    const std::uint32_t holds = section->m_recursion.load(std::memory_order_relaxed);
    section->m_recursion.store(holds + 1, std::memory_order_relaxed);
    return true;
}

}  // namespace detail

inline bool TryEnterCriticalSection(CRITICAL_SECTION* section) noexcept {
    if (detail::EnterIfHeldByCaller(section)) {
        return true;
    }
    if (!detail::TakeFreeLock(section->m_state)) {
        return false;
    }
    section->m_owner.store(&t_threadMark, std::memory_order_relaxed);
    return true;
}

inline void EnterCriticalSection(CRITICAL_SECTION* section) noexcept {
    if (!TryEnterCriticalSection(section)) [[unlikely]] {
        EnterContendedCriticalSection(section);
    }
}

inline void LeaveCriticalSection(CRITICAL_SECTION* section) noexcept {
    const std::uint32_t holds = section->m_recursion.load(std::memory_order_relaxed);
    if (holds != 0) {
        section->m_recursion.store(holds - 1, std::memory_order_relaxed);
        return;
    }
    section->m_owner.store(nullptr, std::memory_order_relaxed);
    if (detail::FreeLock(section->m_state) == 2) [[unlikely]] {
        WakeCriticalSectionWaiter(section);
    }
}

inline void InitializeCriticalSectionAndSpinCount(CRITICAL_SECTION* section,
                                                  std::uint32_t spinCount) noexcept {
    section->m_state.store(0, std::memory_order_relaxed);
    section->m_recursion.store(0, std::memory_order_relaxed);
    section->m_owner.store(nullptr, std::memory_order_relaxed);
    section->m_spinCount = spinCount;
    section->m_contentionCount.store(0, std::memory_order_relaxed);
}

inline void InitializeCriticalSection(CRITICAL_SECTION* section) noexcept {
    InitializeCriticalSectionAndSpinCount(section, 0);
}

inline void DeleteCriticalSection(CRITICAL_SECTION*) noexcept {}

inline std::uint32_t ContentionCount(const CRITICAL_SECTION* section) noexcept {
    return section->m_contentionCount.load(std::memory_order_relaxed);
}

inline void ResetContentionCount(CRITICAL_SECTION* section) noexcept {
    section->m_contentionCount.store(0, std::memory_order_relaxed);
}

}  // namespace platform

#endif

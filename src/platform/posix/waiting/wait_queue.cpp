#include "wait_queue.h"

#include <algorithm>
#include <climits>

#include "futex.h"
#include "processor_pause.h"

namespace platform {
namespace {

constexpr int kSpinCount = 100;

// How many forks lie between the first process and this one.
constinit std::atomic<u32> s_generation{0};

// False if the time ran out first.
bool SleepUntilGranted(Waiter* self, const timespec* deadline) noexcept {
    while (self->m_state.load(std::memory_order_acquire) != Waiter::kGranted) {
        if (!FutexWaitUntil(&self->m_state, Waiter::kWaiting, deadline)) {
            return self->m_state.load(std::memory_order_acquire) == Waiter::kGranted;
        }
    }
    return true;
}

void Grant(Waiter* waiter) noexcept {
    waiter->m_state.store(Waiter::kGranted, std::memory_order_release);
    FutexWake(&waiter->m_state, 1);
}

}  // namespace

void ForgetInheritedWaiters() noexcept {
    s_generation.fetch_add(1, std::memory_order_relaxed);
}

u32 WaitQueue::Generation() noexcept {
    return s_generation.load(std::memory_order_relaxed) << kGenerationShift & kGenerationBits;
}

u32 WaitQueue::InThisProcess(u32 word) noexcept {
    const bool inherited = (word & kListBits) != 0 && (word & kGenerationBits) != Generation();
    return inherited ? word & kCountBits : word;
}

// `word` is what the caller saw.
bool WaitQueue::TryLock(u32 word) noexcept {
    const u32 current = InThisProcess(word);
    if ((current & kLocked) != 0) {
        AwaitLock(word);
        return false;
    }
    if (!m_word.compare_exchange_strong(word, current | kLocked | Generation(),
                                        std::memory_order_acquire, std::memory_order_relaxed)) {
        return false;
    }
    if ((current & kWaiters) == 0) {
        m_first = m_last = nullptr;
    }
    return true;
}

void WaitQueue::Lock() noexcept {
    while (!TryLock(m_word.load(std::memory_order_relaxed))) {
    }
}

bool WaitQueue::LockUnlessCounted() noexcept {
    for (;;) {
        const u32 word = m_word.load(std::memory_order_relaxed);
        if (word >= kOne) {
            return false;
        }
        if (TryLock(word)) {
            return true;
        }
    }
}

// Returns when it is worth another try.
[[gnu::cold]] void WaitQueue::AwaitLock(u32 word) noexcept {
    for (int turn = 0; turn < kSpinCount; ++turn) {
        PauseProcessor();
        if ((m_word.load(std::memory_order_relaxed) & kLocked) == 0) {
            return;
        }
    }
    const u32 wanted = word | kLockWanted;
    if (m_word.compare_exchange_strong(word, wanted, std::memory_order_relaxed)) {
        FutexWait(&m_word, wanted);
    }
}

void WaitQueue::Unlock(u32 count) noexcept {
    u32 word = m_word.load(std::memory_order_relaxed);
    const u32 list = m_first != nullptr ? (word & kGenerationBits) | kWaiters : 0;
    const auto unlocked = [&] { return std::max(word & kCountBits, count) | list; };
    while (!m_word.compare_exchange_weak(word, unlocked(), std::memory_order_release,
                                         std::memory_order_relaxed)) {
    }
    if ((word & kLockWanted) != 0) {
        FutexWake(&m_word, INT_MAX);
    }
}

void WaitQueue::Append(Waiter* waiter) noexcept {
    waiter->m_listed = true;
    waiter->m_generation = Generation();
    waiter->m_previous = m_last;
    (m_last != nullptr ? m_last->m_next : m_first) = waiter;
    m_last = waiter;
}

void WaitQueue::Remove(Waiter* waiter) noexcept {
    waiter->m_listed = false;
    (waiter->m_previous != nullptr ? waiter->m_previous->m_next : m_first) = waiter->m_next;
    (waiter->m_next != nullptr ? waiter->m_next->m_previous : m_last) = waiter->m_previous;
}

bool WaitQueue::GrantOne() noexcept {
    Lock();
    Waiter* const first = m_first;
    if (first != nullptr) {
        Remove(first);
    }
    Unlock();
    if (first != nullptr) {
        Grant(first);
    }
    return first != nullptr;
}

void WaitQueue::GrantAll(u32 count) noexcept {
    Lock();
    Waiter* waiter = m_first;
    for (Waiter* listed = waiter; listed != nullptr; listed = listed->m_next) {
        listed->m_listed = false;
    }
    m_first = m_last = nullptr;
    Unlock(count);
    while (waiter != nullptr) {
        // The record is gone once it is granted.
        Waiter* const next = waiter->m_next;
        Grant(waiter);
        waiter = next;
    }
}

bool WaitQueue::Join(Waiter* self, u32 taken) noexcept {
    while (!LockUnlessCounted()) {
        if (TryTake(taken)) {
            return false;
        }
    }
    Append(self);
    Unlock();
    return true;
}

// False if the waiter was granted instead.
bool WaitQueue::Leave(Waiter* self) noexcept {
    if (self->m_generation != Generation()) {
        return true;
    }
    Lock();
    const bool listed = self->m_listed;
    if (listed) {
        Remove(self);
    }
    Unlock();
    return listed;
}

bool WaitQueue::Await(Waiter* self, const Deadline& deadline) noexcept {
    if (SleepUntilGranted(self, deadline.Time())) {
        return true;
    }
    return !Leave(self) && SleepUntilGranted(self, nullptr);
}

bool WaitQueue::Wait(u32 taken, u32 milliseconds) noexcept {
    const Deadline deadline(milliseconds);
    Waiter self;
    return !Join(&self, taken) || Await(&self, deadline);
}

}  // namespace platform

// A count and the threads that wait for it, in the order in which they came. Events, semaphores and
// condition variables are made of it; a condition variable's count stays 0.
//
// WHAT A WAITER IS PROMISED. A grant is made to a waiter by name: whoever comes later, the granting
// thread included, cannot take it away, and a waiter whose time runs out has either left the list
// before anything was granted to it, or goes on with the grant. So as many go on as were granted.
//
// m_word, from the least significant bit:
//   locked       somebody works on the list
//   lock wanted  somebody may sleep on this word until the list is let go
//   waiters      the list is not empty
//   generation   13 bits, only while one of these three is set: see FORKS
//   count        16 bits
// While none of the three is set, the word is just the count: raising and taking it are one
// compare-and-exchange each. While one is set, the count only falls. Who writes what:
//   TryRaise   adds 1 to the count (release), while none of the three is set
//   TryTake    subtracts 1 from the count (acquire), at any time
//   Clear      takes the whole count away (acquire: what was done before the signals that it drops
//   is
//              seen by whoever looks next whether there is something to do), at any time
//   Lock       sets locked (acquire), if it is not set
//   AwaitLock  sets lock wanted, while locked is set
//   Unlock     clears locked and lock wanted and says whether there are waiters (release)
// A thread joins the list only under a lock that it got while the count was 0; the count then stays
// 0 until the list is empty, or all that is on it is granted at once.
//
// All of these are read-modify-writes of one word, so a taker synchronises with every raise before
// it through the release sequence. m_first, m_last and the links of the waiters belong to the
// holder of the lock. Whoever slept for the lock may find a count and not want the lock any more,
// so Unlock wakes all who sleep for it.
//
// A WAITER is a record on its own thread's stack. m_state goes from waiting to granted (release,
// read with acquire; by the one who took it off the list). The granting thread lets the lock go,
// which is the last that it does to the queue, and then grants; after that it touches neither the
// queue nor the waiter, but for a wake-up of the bare address. So a thread that was granted may
// destroy the queue. A waiter whose time is up and who finds itself off the list stays until it is
// granted: its record is still to be written to. Nothing that it does meanwhile is a cancellation
// point.
//
// FORKS. A child inherits the word and the list, but not the threads that wait there or hold the
// lock. The generation in the word is that of the process in which the lower bits were set; where
// it is another one's, they count as clear, and the list as empty. The count is kept.
#ifndef QX_PLATFORM_POSIX_WAITING_WAIT_QUEUE_H
#define QX_PLATFORM_POSIX_WAITING_WAIT_QUEUE_H

#include <atomic>

#include "deadline.h"

namespace platform {

struct Waiter {
    enum State : u32 { kWaiting, kGranted };

    std::atomic<u32> m_state{kWaiting};
    u32 m_generation = 0;
    bool m_listed = false;
    Waiter* m_next = nullptr;
    Waiter* m_previous = nullptr;
};

class WaitQueue {
  public:
    // The count is given and asked for in units of its place in the word.
    static constexpr u32 kOne = 1u << 16;

    constexpr explicit WaitQueue(u32 count = 0) noexcept : m_word(count) {}

    // Grants to the first waiter; adds kOne, up to `maximum`, if there is none. False if the count
    // was at the maximum.
    bool Raise(u32 maximum) noexcept {
        bool full = false;
        while (!TryRaise(maximum, full)) {
            if (GrantOne()) {
                return true;
            }
        }
        return !full;
    }

    // Sets the count to kOne and grants to all waiters.
    void RaiseForAll() noexcept {
        bool full = false;
        if (!TryRaise(kOne, full)) {
            GrantAll(kOne);
        }
    }

    // Takes `taken`, kOne or 0, off the count unless that is 0.
    bool TryTake(u32 taken) noexcept {
        u32 word = m_word.load(std::memory_order_acquire);
        while (word >= kOne) {
            if (taken == 0 ||
                m_word.compare_exchange_weak(word, word - taken, std::memory_order_acquire)) {
                return true;
            }
        }
        return false;
    }

    void Clear() noexcept { m_word.fetch_and(kOne - 1, std::memory_order_acquire); }

    // Takes from the count as TryTake, or waits for a grant. False if the time ran out.
    bool Wait(u32 taken, u32 milliseconds) noexcept;

    // The two halves of a wait. Between them the caller is granted what others grant. Join is false
    // if there was a count to take; then the wait is over. A thread that joined must await, with no
    // cancellation point in between.
    bool Join(Waiter* self, u32 taken) noexcept;
    bool Await(Waiter* self, const Deadline& deadline) noexcept;

    // True if somebody may wait, whose joining the caller knows of.
    bool MayHaveWaiters() const noexcept {
        return (m_word.load(std::memory_order_relaxed) & kListBits) != 0;
    }

    // False if nobody waits.
    bool GrantOne() noexcept;

    // And raises the count to `count`.
    void GrantAll(u32 count) noexcept;

  private:
    static constexpr u32 kLocked = 1;
    static constexpr u32 kLockWanted = 2;
    static constexpr u32 kWaiters = 4;
    static constexpr u32 kListBits = kLocked | kLockWanted | kWaiters;
    static constexpr u32 kCountBits = ~(kOne - 1);
    static constexpr u32 kGenerationBits = ~(kCountBits | kListBits);
    static constexpr u32 kGenerationShift = 3;

    // False, with nothing done, while somebody works on the list or waits.
    bool TryRaise(u32 maximum, bool& full) noexcept {
        u32 word = m_word.load(std::memory_order_relaxed);
        while ((word & kListBits) == 0) {
            full = word >= maximum;
            // A signal that adds nothing is still one that orders.
            if (m_word.compare_exchange_weak(word, full ? word : word + kOne,
                                             std::memory_order_release,
                                             std::memory_order_relaxed)) {
                return true;
            }
        }
        return false;
    }

    static u32 Generation() noexcept;
    static u32 InThisProcess(u32 word) noexcept;
    bool TryLock(u32 word) noexcept;
    void Lock() noexcept;
    bool LockUnlessCounted() noexcept;
    void AwaitLock(u32 word) noexcept;
    void Unlock(u32 count = 0) noexcept;
    void Append(Waiter* waiter) noexcept;
    void Remove(Waiter* waiter) noexcept;
    bool Leave(Waiter* self) noexcept;

    std::atomic<u32> m_word;
    Waiter* m_first = nullptr;
    Waiter* m_last = nullptr;
};

// Makes the waiters that this process has inherited nobody's. To be called in a forked child.
void ForgetInheritedWaiters() noexcept;

}  // namespace platform

#endif

// A semaphore that processes share by its name.
#ifndef QX_PLATFORM_POSIX_SHARED_NAMED_SEMAPHORE_H
#define QX_PLATFORM_POSIX_SHARED_NAMED_SEMAPHORE_H

#include <atomic>

#include "../waiting/signalled_object.h"
#include "object_path.h"

namespace platform {

// The word that a semaphore's file holds. From the least significant bit:
//   count     15 bits
//   sleepers  somebody may sleep on the word
//   arrival   somebody has made up his mind to sleep since the last post that found sleepers
//   epoch     counts those posts
// The kernel's queue on the lower half of the word is what says who waits, since a process can be
// killed at any point and would never take back what it had noted down about itself. So the kernel
// hands the count over as well: a sleeper that a post woke has got what was posted, and the count
// stays 0. Nobody who comes later, the poster included, can take it away; who is killed in his
// sleep gets nothing, since he has left the queue. Only posts wake anybody on this word.
//
//   Take   takes 1 off the count (acquire), if it is not 0
//   Sleep  sets sleepers and arrival, if the count is 0, and sleeps for as long as the lower half
//   is
//          what it was then. Woken: granted (acquire). Else it starts over.
//   Post   adds 1 to the count (release), if there are no sleepers. Otherwise
//          1. it clears arrival and adds 1 to the epoch (release);
//          2. it wakes one. If there was one, that is all;
//          3. it clears sleepers and adds 1 to the count, if the word is as after 1; else it starts
//             over.
// The count is 0 while sleepers is set. Step 3 strands nobody: who fell asleep before step 2 was
// found by it, and nobody fell asleep between 1 and 3, because everyone sleeps on a word with the
// arrival set, and setting it makes step 3 fail. The epoch, 47 bits, keeps two posts at once from
// taking each other's word for their own. A post that is killed on the way has not happened, or has
// happened whole.
//
// Whatever somebody writes into the word, there is no more to it than a wrong count.
class SharedCount {
  public:
    static constexpr u64 kMaximum = 0x7FFF;

    explicit constexpr SharedCount(u64 count = 0) noexcept : m_word(count) {}

    bool TryTake() noexcept {
        u64 word = m_word.load(std::memory_order_relaxed);
        while ((word & kCountBits) != 0) {
            if (m_word.compare_exchange_weak(word, word - 1, std::memory_order_acquire,
                                             std::memory_order_relaxed)) {
                return true;
            }
        }
        return false;
    }

    // Takes, or sleeps until it is granted.
    void Take() noexcept {
        while (!TryTake() && !Sleep()) {
        }
    }

    // False at the maximum.
    bool Post() noexcept {
        u64 word = m_word.load(std::memory_order_relaxed);
        for (;;) {
            if ((word & kSleepers) != 0) [[unlikely]] {
                if (PostToSleeper(word)) {
                    return true;
                }
                word = m_word.load(std::memory_order_relaxed);
            } else if ((word & kCountBits) == kMaximum) {
                return false;
            } else if (m_word.compare_exchange_weak(word, word + 1, std::memory_order_release,
                                                    std::memory_order_relaxed)) {
                return true;
            }
        }
    }

  private:
    static constexpr u64 kCountBits = kMaximum;
    static constexpr u64 kSleepers = 0x8000;
    static constexpr u64 kArrival = 0x10000;
    static constexpr u64 kEpoch = 0x20000;

    std::atomic<u32>* LowerHalf() noexcept;
    bool Sleep() noexcept;
    bool PostToSleeper(u64 word) noexcept;

    std::atomic<u64> m_word;
};

class NamedSemaphore final : public Semaphore {
  public:
    // A use of the semaphore of that name, which gets that count if it is new. Null with the last
    // error set on failure; otherwise the last error is 0, or 183 if the semaphore was there.
    static NamedSemaphore* Open(const char* name, u32 initialCount) noexcept;

    ~NamedSemaphore() override;

    // `milliseconds` is 0 or all ones.
    u32 Wait(u32 milliseconds) noexcept override;
    bool Release() noexcept override { return m_count->Post(); }

  private:
    explicit NamedSemaphore(const char* name) noexcept : Semaphore(0), m_path(name) {}

    u32 Join(u32 initialCount, bool* existed) noexcept;

    const ObjectPath m_path;
    SharedCount* m_count = nullptr;
};

}  // namespace platform

#endif

#include "named_semaphore.h"

#include <sys/mman.h>

#include <bit>
#include <memory>
#include <new>

#include "../cancellation.h"
#include "../futex.h"
#include "named_object.h"
#include "platform/errors.h"
#include "platform/handles.h"

namespace platform {

static_assert(std::atomic<u64>::is_always_lock_free && sizeof(SharedCount) == sizeof(u64));

std::atomic<u32>* SharedCount::LowerHalf() noexcept {
    auto* const halves = reinterpret_cast<std::atomic<u32>*>(&m_word);
    return halves + (std::endian::native == std::endian::little ? 0 : 1);
}

// False if the word has changed or a signal came: nothing was granted.
[[gnu::cold]] bool SharedCount::Sleep() noexcept {
    u64 word = m_word.load(std::memory_order_relaxed);
    if ((word & kCountBits) != 0) {
        return false;
    }
    const u64 asleep = word | kSleepers | kArrival;
    if (word != asleep && !m_word.compare_exchange_strong(word, asleep)) {
        return false;
    }
    if (!SharedFutexWait(LowerHalf(), static_cast<u32>(asleep))) {
        return false;
    }
    // The post that granted has written the word before, so this sees what it released.
    static_cast<void>(m_word.load(std::memory_order_acquire));
    return true;
}

// `word` is what the caller saw. False if the word has changed.
[[gnu::cold]] bool SharedCount::PostToSleeper(u64 word) noexcept {
    const u64 mine = (word & ~kArrival) + kEpoch;
    if (!m_word.compare_exchange_strong(word, mine)) {
        return false;
    }
    if (SharedFutexWake(LowerHalf(), 1) > 0) {
        return true;
    }
    word = mine;
    return m_word.compare_exchange_strong(word, (mine & ~kSleepers) + 1);
}

// Frees what is there only after a failure on the way, too.
NamedSemaphore::~NamedSemaphore() {
    const ErrnoKeeper keepErrno;
    if (m_count != nullptr) {
        ::munmap(m_count, sizeof(SharedCount));
    }
    RemoveUnusedObject(m_path);
}

// The mapping alone is the use: no descriptor is kept.
u32 NamedSemaphore::Join(u32 initialCount, bool* existed) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff stay;
    const SharedCount count(initialCount);
    const NewObject fresh{sizeof count, &count, sizeof count};
    const OpenedObject object = OpenNamedObject(m_path, &fresh);
    if (object.m_error != 0) {
        return object.m_error;
    }
    if (object.m_size != sizeof(SharedCount)) {
        return kErrorInvalidHandle;
    }
    void* const mapped = ::mmap(nullptr, sizeof(SharedCount), PROT_READ | PROT_WRITE, MAP_SHARED,
                                object.m_file.Get(), 0);
    if (mapped == MAP_FAILED) {
        return NativeErrorFromErrno(errno);
    }
    m_count = static_cast<SharedCount*>(mapped);
    *existed = object.m_existed;
    return kErrorSuccess;
}

NamedSemaphore* NamedSemaphore::Open(const char* name, u32 initialCount) noexcept {
    std::unique_ptr<NamedSemaphore> semaphore(new (std::nothrow) NamedSemaphore(name));
    if (semaphore == nullptr) {
        SetLastError(kErrorOutOfMemory);
        return nullptr;
    }
    bool existed = false;
    const u32 error = semaphore->Join(initialCount, &existed);
    if (error != 0) {
        semaphore.reset();
        SetLastError(error);
        return nullptr;
    }
    SetLastError(existed ? kErrorAlreadyExists : kErrorSuccess);
    return semaphore.release();
}

u32 NamedSemaphore::Wait(u32 milliseconds) noexcept {
    if (milliseconds == 0) {
        return m_count->TryTake() ? kWaitObject0 : kWaitTimeout;
    }
    m_count->Take();
    return kWaitObject0;
}

}  // namespace platform

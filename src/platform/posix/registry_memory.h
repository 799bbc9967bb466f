// What a process remembers of a store, and whether that is current: the cache, the number of the
// store's word that it was filled under, and the last look at the store's files.
//
// A read that finds all of it current is answered without the store's lock and without a system
// call. m_number is 0 while nothing is remembered. It is written under the store's lock, and a
// cache is filled before the number by which it counts is stored (release) and loaded (acquire).
#ifndef QX_PLATFORM_POSIX_REGISTRY_MEMORY_H
#define QX_PLATFORM_POSIX_REGISTRY_MEMORY_H

#include <time.h>

#include <atomic>

#include "registry_cache.h"
#include "registry_connection.h"
#include "registry_word.h"

namespace platform {

class StoreMemory {
  public:
    constexpr StoreMemory() noexcept = default;
    StoreMemory(const StoreMemory&) = delete;
    StoreMemory& operator=(const StoreMemory&) = delete;

    // Between BeginUse and EndUse, or with the store's lock.
    bool IsCurrent() const noexcept;
    // Whether the thread acts with the rights with which the store was read.
    bool RightsHold() const noexcept;
    // No thread of the process can ever act with others.
    bool RightsDoNotMatter() const noexcept {
        return m_rightsDoNotMatter.load(std::memory_order_relaxed);
    }
    RegistryCache& Cache() noexcept { return m_cache; }
    StoreWord& Word() noexcept { return m_word; }
    const StoreWord& Word() const noexcept { return m_word; }

    // The rest is called with the store's lock held.

    bool IsTimeToLook() const noexcept {
        return Second() != m_looked.load(std::memory_order_relaxed);
    }
    void NoteLook() noexcept { m_looked.store(Second(), std::memory_order_relaxed); }
    void LookSoon() noexcept { m_looked.store(0, std::memory_order_relaxed); }

    // Forgets everything if the database or its word is another one.
    void FollowFiles(const StorePaths& paths, const FileState& database) noexcept;

    // To be called on a connection that is in place, once a second and when it is new: forgets also
    // what somebody changed without the word, and learns who may use it.
    void Look(const StoreConnection& connection) noexcept;

    // What is remembered is worth nothing. The word stays where it is.
    void Forget() noexcept { m_number.store(0, std::memory_order_release); }
    void Detach() noexcept;
    void Release() noexcept;

    // Prepares for keeping what is read next. The word's number then, or 0 if nothing can be kept.
    u64 BeginReading(const StoreConnection& connection) noexcept;

    // A write of this process: what is remembered stays current if nobody else wrote since.
    class OwnWrite {
      public:
        OwnWrite(StoreMemory& memory, const StoreConnection& connection) noexcept;
        // Whether the cache can be brought up to date.
        bool CanFollow() noexcept;
        void Follow() noexcept;

      private:
        StoreMemory& m_memory;
        const StoreConnection& m_connection;
        u64 m_number;
        IndexState m_after{};
    };

  private:
    static time_t Second() noexcept;
    void LearnRights(const StoreConnection& connection) noexcept;
    bool StartAnew(u64 number, const IndexState& index) noexcept;

    RegistryCache m_cache;
    StoreWord m_word;
    std::atomic<u64> m_number{0};
    std::atomic<time_t> m_looked{0};
    std::atomic<bool> m_rightsDoNotMatter{false};
    std::atomic<uid_t> m_user{0};
    std::atomic<gid_t> m_group{0};
    IndexState m_index{};  // of the log, when the cache was begun
};

// A look at what is remembered, which keeps it from being emptied.
class MemoryUse {
  public:
    MemoryUse(StoreMemory& memory, StoreNumber number) noexcept;
    ~MemoryUse();
    MemoryUse(const MemoryUse&) = delete;
    MemoryUse& operator=(const MemoryUse&) = delete;

    explicit operator bool() const noexcept { return m_current; }

    // How many the calling thread is in the middle of: in a handler that interrupted them.
    static u32 OfThisThread(StoreNumber number) noexcept;

  private:
    StoreMemory& m_memory;
    StoreNumber m_store;
    bool m_used;
    bool m_current;
};

}  // namespace platform

#endif

// What a process remembers of a store: the keys and values that it read, absence included.
//
// Anybody in the process may look things up while one thread, which holds the store's lock, adds to
// it: no entry changes and its memory is never used for another as long as somebody looks.
// An entry is complete before the one store that makes it findable (release), and is found by a
// load of that pointer (acquire). An entry that is not found is no answer, so nothing goes wrong
// for somebody who looks while entries move to a larger table.
//
// m_users counts those who look. Whoever empties the cache, or changes an entry, first turns
// newcomers away and goes on only when there is nobody; it never waits for long, and never for a
// thread that it interrupted, since nobody who holds the store's lock may wait for a handler that
// itself wants that lock.
#ifndef QX_PLATFORM_POSIX_REGISTRY_CACHE_H
#define QX_PLATFORM_POSIX_REGISTRY_CACHE_H

#include <atomic>
#include <cstddef>
#include <string_view>

#include "platform/types.h"
#include "registry_arena.h"
#include "registry_location.h"

namespace platform {

enum class CacheKind : u8 {
    kPath,       // a key by its folded path below another; m_number 0 if there is none
    kValue,      // a value by its folded name below a key; m_number 0 if there is none
    kName,       // a key below a key; only in a list
    kKeyList,    // all keys below a key in their order
    kValueList,  // all values of a key in their order
};

struct CacheEntry {
    std::atomic<CacheEntry*> m_next;
    u64 m_hash;
    i64 m_owner;   // the key that it is below
    i64 m_number;  // the row, or the entries of a list; kTooLong for a list that is not kept
    u32 m_type;
    u32 m_size;  // bytes of a value
    u32 m_foldedUnits;
    u32 m_nameUnits;
    CacheKind m_kind;

    static constexpr i64 kTooLong = -1;

    std::u16string_view Folded() const noexcept { return {Units(), m_foldedUnits}; }
    std::u16string_view Name() const noexcept { return {Units() + m_foldedUnits, m_nameUnits}; }
    const void* Data() const noexcept { return Units() + m_foldedUnits + m_nameUnits; }
    void* Body() noexcept { return this + 1; }
    char* DataToChange() noexcept { return static_cast<char*>(const_cast<void*>(Data())); }
    const CacheEntry* const* Items() const noexcept {
        return reinterpret_cast<const CacheEntry* const*>(this + 1);
    }

  private:
    const char16_t* Units() const noexcept { return reinterpret_cast<const char16_t*>(this + 1); }
};

// What an entry is made of. Names are in the processor's order of bytes here, and `stored` ones as
// the store has them.
struct NewCacheEntry {
    CacheKind m_kind;
    i64 m_owner = 0;
    i64 m_number = 0;
    u32 m_type = 0;
    std::u16string_view m_folded{};
    std::string_view m_storedName{};
    std::string_view m_data{};
};

class RegistryCache {
  public:
    constexpr RegistryCache() noexcept = default;
    RegistryCache(const RegistryCache&) = delete;
    RegistryCache& operator=(const RegistryCache&) = delete;

    // A value that is longer than this is not kept, and a list of more bytes neither.
    static constexpr std::size_t kMostValue = std::size_t{64} * 1024;
    static constexpr std::size_t kMostList = RegistryArena::kMost / 4;

    // To be called between BeginUse and EndUse. Null if it is not known.
    const CacheEntry* Find(CacheKind kind, i64 owner, std::u16string_view folded) const noexcept;

    // Changes when an entry that was found may be found no longer.
    u32 Epoch() const noexcept { return m_epoch.load(std::memory_order_relaxed); }

    // False if the cache is being emptied.
    bool BeginUse() noexcept;
    void EndUse() noexcept;

    // The rest is called with the store's lock held and signals off.

    // An entry that nobody finds yet. Null if there is no room.
    CacheEntry* New(const NewCacheEntry& entry) noexcept;
    CacheEntry* NewList(CacheKind kind, i64 owner, const CacheEntry* const* items,
                        std::size_t count) noexcept;
    void Publish(CacheEntry* entry) noexcept;
    // Gives an entry other data of the same size, in its place. False, and nothing done, if there
    // is none, or while somebody looks.
    bool Overwrite(const NewCacheEntry& with) noexcept;
    // Nobody finds it any more.
    void Forget(CacheKind kind, i64 owner, std::u16string_view folded) noexcept;

    // Forgets everything. False, and nothing done, while somebody looks.
    bool Empty() noexcept;
    // Nobody looks, and nobody ever will.
    void Release() noexcept;

    // A read that had to go to the store because there is no room left: true when it is better to
    // begin anew with what is asked for now.
    bool IsOutlived() noexcept { return m_isFull && ++m_missesWhenFull > m_count; }

    // In the child after a fork: those who looked are gone, but `own`.
    void ForgetUsers(u32 own) noexcept { m_users.store(own, std::memory_order_relaxed); }
    u32 Users() const noexcept { return m_users.load(std::memory_order_relaxed); }

  private:
    using Bucket = std::atomic<CacheEntry*>;
    struct Table {
        std::size_t m_mask;
        Bucket m_buckets[];
    };

    // Turns newcomers away until Reopen. False if somebody still looks after so many pauses.
    bool Close(int mostPauses) noexcept;
    void Reopen() noexcept;
    void* Take(std::size_t size) noexcept;
    CacheEntry* NewEntry(CacheKind kind, i64 owner, std::u16string_view folded,
                         std::size_t more) noexcept;
    bool MakeTable(std::size_t buckets) noexcept;
    void GrowTable() noexcept;
    void Link(CacheEntry* entry) noexcept;

    std::atomic<u32> m_users{0};
    std::atomic<u32> m_epoch{1};
    std::atomic<Table*> m_table{nullptr};
    std::size_t m_count = 0;
    std::size_t m_missesWhenFull = 0;
    bool m_isFull = false;
    RegistryArena m_arena;
};

}  // namespace platform

#endif

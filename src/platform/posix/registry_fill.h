// Keeping what was read from a store, if it was still current when it had been read.
#ifndef QX_PLATFORM_POSIX_REGISTRY_FILL_H
#define QX_PLATFORM_POSIX_REGISTRY_FILL_H

#include <string_view>

#include "registry_store.h"

namespace platform {

// A value as it stands in the store.
struct StoredValue {
    i64 m_key;
    i64 m_row;
    u32 m_type;
    std::string_view m_data;
};

// Made before the reading. Keeps nothing if the store is being written.
class MemoryFill {
  public:
    explicit MemoryFill(RegistryStore& store) noexcept
        : m_memory(store.Memory()), m_number(m_memory.BeginReading(store.Connection())) {}
    MemoryFill(const MemoryFill&) = delete;
    MemoryFill& operator=(const MemoryFill&) = delete;

    // Whether the cache is current.
    explicit operator bool() const noexcept { return m_number != 0; }
    RegistryCache& Cache() const noexcept { return m_memory.Cache(); }

    // Whether what has been read is what the store held when this was made.
    bool MayKeep() const noexcept { return m_number != 0 && m_memory.Word().IsStill(m_number); }

    void KeepKey(i64 base, std::u16string_view path, i64 id) noexcept;
    void KeepAbsence(CacheKind kind, i64 owner, std::u16string_view folded) noexcept;
    void KeepValue(std::u16string_view folded, const StoredValue& value) noexcept;

  private:
    void Keep(const NewCacheEntry& entry) noexcept;

    StoreMemory& m_memory;
    u64 m_number;
};

// At the first step of a walk: the whole list, if it is not too long. Throw StoreFailure or
// std::bad_alloc.
void KeepKeys(RegistryStore& store, i64 id, u32 index);
void KeepValues(RegistryStore& store, i64 id, u32 index);

// Brings the cache up to date with a value that this process wrote.
void KeepWritten(RegistryCache& cache, std::u16string_view folded,
                 const StoredValue& value) noexcept;
void KeepDeleted(RegistryCache& cache, i64 key, std::u16string_view folded) noexcept;

}  // namespace platform

#endif

// A table of entries by number that needs no memory of its own.
#ifndef QX_PLATFORM_POSIX_ENTRY_TABLE_H
#define QX_PLATFORM_POSIX_ENTRY_TABLE_H

#include <cstddef>

#include "platform/types.h"

namespace platform {

struct TableEntry {
    u64 m_key = 0;
    TableEntry* m_next = nullptr;
};

// Guarded by its user.
class EntryTable {
  public:
    void Insert(u64 key, TableEntry* entry) noexcept {
        TableEntry*& bucket = m_buckets[BucketOf(key)];
        entry->m_key = key;
        entry->m_next = bucket;
        bucket = entry;
    }

    // Null if there is none.
    TableEntry* Find(u64 key) noexcept { return *PlaceOf(key); }

    TableEntry* Remove(u64 key) noexcept {
        TableEntry** const place = PlaceOf(key);
        TableEntry* const entry = *place;
        if (entry != nullptr) {
            *place = entry->m_next;
        }
        return entry;
    }

  private:
    static constexpr std::size_t kBuckets = 256;

    // Addresses of pages differ in their upper bits, serial numbers in the lower ones.
    static std::size_t BucketOf(u64 key) noexcept { return (key ^ key >> 12) % kBuckets; }

    TableEntry** PlaceOf(u64 key) noexcept {
        TableEntry** place = &m_buckets[BucketOf(key)];
        while (*place != nullptr && (*place)->m_key != key) {
            place = &(*place)->m_next;
        }
        return place;
    }

    TableEntry* m_buckets[kBuckets] = {};
};

}  // namespace platform

#endif

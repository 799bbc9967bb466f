#include "registry_cache.h"

#include <sys/single_threaded.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <span>
#include <utility>

#include "processor_pause.h"
#include "registry_names.h"

namespace platform {
namespace {

constexpr u32 kClosed = 0x80000000;
constexpr std::size_t kFirstBuckets = 256;
constexpr int kMostPauses = 2'000;  // somebody who looks is gone long before

u64 Mixed(u64 a, u64 b) noexcept {
    const auto product = static_cast<unsigned __int128>(a) * b;
    return static_cast<u64>(product) ^ static_cast<u64>(product >> 64);
}

u64 HashOf(CacheKind kind, i64 owner, std::u16string_view folded) noexcept {
    constexpr u64 kOdd = 0x9E3779B97F4A7C15;
    u64 hash = Mixed(static_cast<u64>(owner) ^ kOdd, static_cast<u64>(kind) + 0xD1B54A32D192ED03);
    const auto* bytes = reinterpret_cast<const char*>(folded.data());
    std::size_t left = 2 * folded.size();
    u64 block = 0;
    for (; left > sizeof block; left -= sizeof block, bytes += sizeof block) {
        std::memcpy(&block, bytes, sizeof block);
        hash = Mixed(hash ^ block, kOdd);
    }
    block = 0;
    if (left != 0) {
        std::memcpy(&block, bytes, left);
    }
    return Mixed(hash ^ block, kOdd ^ folded.size());
}

bool Is(const CacheEntry& entry, u64 hash, CacheKind kind, i64 owner,
        std::u16string_view folded) noexcept {
    return entry.m_hash == hash && entry.m_owner == owner && entry.m_kind == kind &&
           entry.Folded() == folded;
}

// In what is left of a bucket.
CacheEntry* FindFrom(CacheEntry* entry, u64 hash, CacheKind kind, i64 owner,
                     std::u16string_view folded) noexcept {
    while (entry != nullptr && !Is(*entry, hash, kind, owner, folded)) {
        entry = entry->m_next.load(std::memory_order_acquire);
    }
    return entry;
}

// One thread alone needs no locked instruction. A handler that interrupts this leaves the count as
// it found it.
u32 AddTo(std::atomic<u32>& count, u32 more, std::memory_order order) noexcept {
    if (__libc_single_threaded) {
        const u32 before = count.load(std::memory_order_relaxed);
        count.store(before + more, std::memory_order_relaxed);
        std::atomic_signal_fence(std::memory_order_seq_cst);
        return before;
    }
    return count.fetch_add(more, order);
}

}  // namespace

const CacheEntry* RegistryCache::Find(CacheKind kind, i64 owner,
                                      std::u16string_view folded) const noexcept {
    const Table* const table = m_table.load(std::memory_order_acquire);
    if (table == nullptr) {
        return nullptr;
    }
    const u64 hash = HashOf(kind, owner, folded);
    CacheEntry* const first =
        table->m_buckets[hash & table->m_mask].load(std::memory_order_acquire);
    return FindFrom(first, hash, kind, owner, folded);
}

bool RegistryCache::BeginUse() noexcept {
    if ((AddTo(m_users, 1, std::memory_order_acquire) & kClosed) == 0) [[likely]] {
        return true;
    }
    EndUse();
    return false;
}

void RegistryCache::EndUse() noexcept {
    std::atomic_signal_fence(std::memory_order_seq_cst);
    AddTo(m_users, ~0u, std::memory_order_release);
}

void* RegistryCache::Take(std::size_t size) noexcept {
    void* const taken = m_arena.Take(size);
    m_isFull = taken == nullptr;
    return taken;
}

CacheEntry* RegistryCache::NewEntry(CacheKind kind, i64 owner, std::u16string_view folded,
                                    std::size_t more) noexcept {
    void* const memory = Take(sizeof(CacheEntry) + 2 * folded.size() + more);
    if (memory == nullptr) {
        return nullptr;
    }
    auto* const entry = ::new (memory) CacheEntry{};
    entry->m_hash = HashOf(kind, owner, folded);
    entry->m_owner = owner;
    entry->m_kind = kind;
    entry->m_foldedUnits = static_cast<u32>(folded.size());
    if (!folded.empty()) {
        std::memcpy(entry->Body(), folded.data(), 2 * folded.size());
    }
    return entry;
}

CacheEntry* RegistryCache::New(const NewCacheEntry& from) noexcept {
    const std::size_t nameUnits = from.m_storedName.size() / 2;
    CacheEntry* const entry =
        NewEntry(from.m_kind, from.m_owner, from.m_folded, 2 * nameUnits + from.m_data.size());
    if (entry != nullptr) {
        entry->m_number = from.m_number;
        entry->m_type = from.m_type;
        entry->m_nameUnits = static_cast<u32>(nameUnits);
        entry->m_size = static_cast<u32>(from.m_data.size());
        UnitsOfStoredName(from.m_storedName,
                          static_cast<char16_t*>(entry->Body()) + from.m_folded.size());
        std::copy(from.m_data.begin(), from.m_data.end(), entry->DataToChange());
    }
    return entry;
}

CacheEntry* RegistryCache::NewList(CacheKind kind, i64 owner, const CacheEntry* const* items,
                                   std::size_t count) noexcept {
    const std::size_t size = std::span(items, count).size_bytes();
    CacheEntry* const list = NewEntry(kind, owner, {}, size);
    if (list != nullptr) {
        list->m_number = static_cast<i64>(count);
        if (count != 0) {
            std::memcpy(list->Body(), items, size);
        }
    }
    return list;
}

bool RegistryCache::MakeTable(std::size_t buckets) noexcept {
    auto* const table = static_cast<Table*>(Take(sizeof(Table) + buckets * sizeof(Bucket)));
    if (table == nullptr) {
        return false;
    }
    table->m_mask = buckets - 1;
    for (std::size_t i = 0; i < buckets; ++i) {
        ::new (&table->m_buckets[i]) Bucket(nullptr);
    }
    m_table.store(table, std::memory_order_release);
    return true;
}

// Entries of one name say the same, so their order does not matter.
void RegistryCache::GrowTable() noexcept {
    const Table* const old = m_table.load(std::memory_order_relaxed);
    const std::size_t buckets = old->m_mask + 1;
    if (!MakeTable(4 * buckets)) {
        return;
    }
    for (std::size_t i = 0; i < buckets; ++i) {
        CacheEntry* entry = old->m_buckets[i].load(std::memory_order_relaxed);
        while (entry != nullptr) {
            CacheEntry* const next = entry->m_next.load(std::memory_order_relaxed);
            Link(std::exchange(entry, next));
        }
    }
}

void RegistryCache::Link(CacheEntry* entry) noexcept {
    Table* const table = m_table.load(std::memory_order_relaxed);
    Bucket& bucket = table->m_buckets[entry->m_hash & table->m_mask];
    entry->m_next.store(bucket.load(std::memory_order_relaxed), std::memory_order_release);
    bucket.store(entry, std::memory_order_release);
}

void RegistryCache::Publish(CacheEntry* entry) noexcept {
    const Table* const table = m_table.load(std::memory_order_relaxed);
    if (table == nullptr && !MakeTable(kFirstBuckets)) {
        return;
    }
    Link(entry);
    if (++m_count > 2 * m_table.load(std::memory_order_relaxed)->m_mask) {
        GrowTable();
    }
}

void RegistryCache::Forget(CacheKind kind, i64 owner, std::u16string_view folded) noexcept {
    Table* const table = m_table.load(std::memory_order_relaxed);
    if (table == nullptr) {
        return;
    }
    m_epoch.fetch_add(1, std::memory_order_relaxed);
    const u64 hash = HashOf(kind, owner, folded);
    Bucket* place = &table->m_buckets[hash & table->m_mask];
    while (CacheEntry* const entry = place->load(std::memory_order_relaxed)) {
        if (Is(*entry, hash, kind, owner, folded)) {
            place->store(entry->m_next.load(std::memory_order_relaxed), std::memory_order_release);
        } else {
            place = &entry->m_next;
        }
    }
}

bool RegistryCache::Close(int mostPauses) noexcept {
    if (m_users.fetch_or(kClosed, std::memory_order_acquire) == 0) {
        return true;
    }
    for (int pause = 0; Users() != kClosed && pause < mostPauses; ++pause) {
        PauseProcessor();
    }
    return m_users.load(std::memory_order_acquire) == kClosed;
}

void RegistryCache::Reopen() noexcept {
    m_users.fetch_and(~kClosed, std::memory_order_release);
}

// What was read by its name and in a list is there twice.
bool RegistryCache::Overwrite(const NewCacheEntry& with) noexcept {
    auto* entry = const_cast<CacheEntry*>(Find(with.m_kind, with.m_owner, with.m_folded));
    if (entry == nullptr || entry->m_number != with.m_number ||
        entry->m_size != with.m_data.size()) {
        return false;
    }
    const bool nobodyLooks = Close(0);
    while (nobodyLooks && entry != nullptr) {
        entry->m_type = with.m_type;
        std::copy(with.m_data.begin(), with.m_data.end(), entry->DataToChange());
        entry = FindFrom(entry->m_next.load(std::memory_order_relaxed), entry->m_hash, with.m_kind,
                         with.m_owner, with.m_folded);
    }
    Reopen();
    return nobodyLooks;
}

bool RegistryCache::Empty() noexcept {
    const bool nobodyLooks = Close(kMostPauses);
    if (nobodyLooks) {
        m_epoch.fetch_add(1, std::memory_order_relaxed);
        m_table.store(nullptr, std::memory_order_relaxed);
        m_arena.Empty();
        m_count = 0;
        m_missesWhenFull = 0;
        m_isFull = false;
    }
    Reopen();
    return nobodyLooks;
}

void RegistryCache::Release() noexcept {
    m_table.store(nullptr, std::memory_order_relaxed);
    m_arena.Release();
}

}  // namespace platform

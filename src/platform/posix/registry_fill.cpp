#include "registry_fill.h"

#include <vector>

#include "platform/errors.h"
#include "registry_lookup.h"
#include "registry_names.h"
#include "registry_query.h"

namespace platform {
namespace {

void Publish(RegistryCache& cache, const NewCacheEntry& from) noexcept {
    if (CacheEntry* const entry = cache.New(from)) {
        cache.Publish(entry);
    }
}

NewCacheEntry EntryOf(std::u16string_view folded, const StoredValue& value) noexcept {
    return {.m_kind = CacheKind::kValue,
            .m_owner = value.m_key,
            .m_number = value.m_row,
            .m_type = value.m_type,
            .m_folded = folded,
            .m_data = value.m_data};
}

// A row that has no number of ours is not kept: the file is somebody else's work.
void PublishValue(RegistryCache& cache, const NewCacheEntry& value) noexcept {
    if (value.m_number > 0 && value.m_data.size() <= RegistryCache::kMostValue) {
        Publish(cache, value);
    }
}

// The entries of a list while it is read. Nobody finds them before all have been.
class ListReader {
  public:
    ListReader(RegistryCache& cache, i64 key) noexcept : m_cache(cache), m_key(key) {}

    // False if the list is not to be kept.
    bool AddKey(Query& row) {
        return IsStoredComponent(row.Blob(1)) && Add({.m_kind = CacheKind::kName}, row, 0);
    }
    bool AddValue(Query& row) {
        return Add({.m_kind = CacheKind::kValue,
                    .m_number = row.Integer(0),
                    .m_type = static_cast<u32>(row.Integer(3)),
                    .m_data = row.Blob(4)},
                   row, 1);
    }

    void Publish(CacheKind kind, bool complete) noexcept {
        CacheEntry* const list =
            m_cache.NewList(kind, m_key, m_entries.data(), complete ? m_entries.size() : 0);
        if (list == nullptr) {
            return;
        }
        if (!complete) {
            list->m_number = CacheEntry::kTooLong;
        } else if (kind == CacheKind::kValueList) {
            for (CacheEntry* const entry : m_entries) {
                m_cache.Publish(entry);
            }
        }
        m_cache.Publish(list);
    }
    bool IsEmpty() const noexcept { return m_entries.empty(); }

  private:
    bool Add(NewCacheEntry from, Query& row, int foldedColumn) {
        const std::string_view folded = row.Blob(foldedColumn);
        from.m_owner = m_key;
        from.m_storedName = row.Blob(foldedColumn + 1);
        m_bytes +=
            from.m_data.size() + from.m_storedName.size() + folded.size() + sizeof(CacheEntry);
        if (m_bytes > RegistryCache::kMostList || from.m_data.size() > RegistryCache::kMostValue ||
            folded.size() % 2 != 0) {
            return false;
        }
        std::u16string units(folded.size() / 2, 0);
        UnitsOfStoredName(folded, units.data());
        from.m_folded = units;
        CacheEntry* const entry = m_cache.New(from);
        if (entry != nullptr) {
            m_entries.push_back(entry);
        }
        return entry != nullptr;
    }

    RegistryCache& m_cache;
    i64 m_key;
    std::size_t m_bytes = 0;
    std::vector<CacheEntry*> m_entries;
};

void KeepList(RegistryStore& store, CacheKind kind, Statement statement, i64 id,
              bool (ListReader::*add)(Query&)) {
    const MemoryFill fill(store);
    if (!fill || fill.Cache().Find(kind, id, {}) != nullptr) {
        return;
    }
    ListReader reader(fill.Cache(), id);
    bool complete = true;
    {
        Query query(store, statement);
        query.Bind(1, id);
        while (complete && query.Step()) {
            complete = (reader.*add)(query);
        }
    }
    if (reader.IsEmpty() && MissingOrDeleted(store, id, kErrorSuccess) != kErrorSuccess) {
        return;
    }
    if (fill.MayKeep()) {
        reader.Publish(kind, complete);
    }
}

}  // namespace

void MemoryFill::Keep(const NewCacheEntry& entry) noexcept {
    if (MayKeep()) {
        Publish(m_memory.Cache(), entry);
    }
}

void MemoryFill::KeepKey(i64 base, std::u16string_view path, i64 id) noexcept {
    Keep({.m_kind = CacheKind::kPath, .m_owner = base, .m_number = id, .m_folded = path});
}

void MemoryFill::KeepAbsence(CacheKind kind, i64 owner, std::u16string_view folded) noexcept {
    Keep({.m_kind = kind, .m_owner = owner, .m_number = 0, .m_folded = folded});
}

void MemoryFill::KeepValue(std::u16string_view folded, const StoredValue& value) noexcept {
    if (MayKeep()) {
        PublishValue(m_memory.Cache(), EntryOf(folded, value));
    }
}

void KeepKeys(RegistryStore& store, i64 id, u32 index) {
    if (index == 0) {
        KeepList(store, CacheKind::kKeyList, Statement::kAllKeys, id, &ListReader::AddKey);
    }
}

void KeepValues(RegistryStore& store, i64 id, u32 index) {
    if (index == 0) {
        KeepList(store, CacheKind::kValueList, Statement::kAllValues, id, &ListReader::AddValue);
    }
}

void KeepDeleted(RegistryCache& cache, i64 key, std::u16string_view folded) noexcept {
    cache.Forget(CacheKind::kValue, key, folded);
    cache.Forget(CacheKind::kValueList, key, {});
}

void KeepWritten(RegistryCache& cache, std::u16string_view folded,
                 const StoredValue& value) noexcept {
    const NewCacheEntry entry = EntryOf(folded, value);
    if (!cache.Overwrite(entry)) {
        KeepDeleted(cache, value.m_key, folded);
        PublishValue(cache, entry);
    }
}

}  // namespace platform

#include "registry_lookup.h"

#include <algorithm>
#include <cstring>
#include <span>
#include <utility>

#include "platform/errors.h"
#include "registry_fill.h"
#include "registry_query.h"

namespace platform {
namespace {

[[noreturn]] void ThrowDamaged() {
    throw StoreFailure{kErrorBadDatabase, false};
}

// The numbers of the roots belong to them alone, whatever the file says.
bool IsNumberOf(i64 id, std::string_view path) {
    return id > kLastReservedId ||
           (id >= kTreeClasses32 && IsRoot(id) && path == StoredName(TreeName(id)));
}

// A key is always made before those below it, so that a walk downwards comes to its end in any
// file.
u32 FindStoredKey(RegistryStore& store, const KeyReference& base, const char16_t* path, i64& id) {
    std::string resolved = PathOfBase(store, base);
    if (resolved.empty()) {
        return kErrorKeyDeleted;
    }
    if (!AppendFoldedPath(resolved, path)) {
        return kErrorInvalidParameter;
    }
    if (!FindKey(store, resolved, id)) {
        return kErrorFileNotFound;
    }
    if (id < base.m_id + HasComponent(path)) {
        ThrowDamaged();
    }
    return kErrorSuccess;
}

u32 CopyValue(u32 type, const void* data, std::size_t size, const ValueTarget& target) noexcept {
    if (target.m_type != nullptr) {
        *target.m_type = type;
    }
    if (target.m_size == nullptr) {
        return kErrorSuccess;
    }
    *target.m_size = static_cast<u32>(size);
    if (target.m_data == nullptr) {
        return kErrorSuccess;
    }
    if (size > target.m_capacity) {
        return kErrorMoreData;
    }
    if (size != 0) {
        std::memcpy(target.m_data, data, size);
    }
    return kErrorSuccess;
}

u32 CopyValue(Query& query, int typeColumn, const ValueTarget& target) noexcept {
    const std::string_view data = query.Blob(typeColumn + 1);
    return CopyValue(static_cast<u32>(query.Integer(typeColumn)), data.data(), data.size(), target);
}

bool CopyName(std::u16string_view from, const NameTarget& target) noexcept {
    if (from.size() >= target.m_capacity) {
        return false;
    }
    std::memcpy(target.m_name, from.data(), 2 * from.size());
    target.m_name[from.size()] = 0;
    *target.m_length = static_cast<u32>(from.size());
    return true;
}

u32 CopyNamedValue(Query& query, const NameTarget& name, const ValueTarget& target) {
    const bool fits = CopyStoredName(query.Blob(1), name.m_name, name.m_capacity, name.m_length);
    const u32 error = CopyValue(query, 2, target);
    return fits ? error : static_cast<u32>(kErrorMoreData);
}

u32 ReadStoredValue(RegistryStore& store, i64 id, std::u16string_view name,
                    const ValueTarget& target, MemoryFill& fill, const FoldedText* folded) {
    const std::string stored = FoldedName(name);
    Query query(store, Statement::kReadValue);
    query.Bind(1, id).Bind(2, stored);
    if (!query.Step()) {
        const u32 error = MissingOrDeleted(store, id, kErrorFileNotFound);
        if (error == kErrorFileNotFound && folded != nullptr) {
            fill.KeepAbsence(CacheKind::kValue, id, folded->Get());
        }
        return error;
    }
    if (folded != nullptr) {
        fill.KeepValue(folded->Get(), {.m_key = id,
                                       .m_row = query.Integer(0),
                                       .m_type = static_cast<u32>(query.Integer(1)),
                                       .m_data = query.Blob(2)});
    }
    return CopyValue(query, 1, target);
}

void RestartKeysIfBehind(KeyWalk& walk, u32 index) noexcept {
    if (index < walk.m_nextKey) {
        walk.m_nextKey = 0;
        walk.m_lastKey.clear();
    }
}

void RestartValuesIfBehind(KeyWalk& walk, u32 index) noexcept {
    if (index < walk.m_nextValue) {
        walk.m_nextValue = 0;
        walk.m_lastValue = 0;
    }
}

u32 NextStoredKey(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, const NameTarget& name) {
    RestartKeysIfBehind(walk, index);
    walk.m_lastKey.reserve(2 * kMaxKeyName);
    for (;;) {
        Query query(store, Statement::kNextChild);
        query.Bind(1, id).Bind(2, walk.m_lastKey);
        if (!query.Step()) {
            return MissingOrDeleted(store, id, kErrorNoMoreItems);
        }
        std::string passed(query.Blob(0));
        passed.reserve(2 * kMaxKeyName);
        std::swap(walk.m_lastKey, passed);
        if (walk.m_nextKey++ == index) {
            if (!IsStoredComponent(query.Blob(1))) {
                ThrowDamaged();
            }
            return CopyStoredName(query.Blob(1), name.m_name, name.m_capacity, name.m_length)
                       ? kErrorSuccess
                       : kErrorMoreData;
        }
    }
}

u32 NextStoredValue(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, const NameTarget& name,
                    const ValueTarget& target) {
    RestartValuesIfBehind(walk, index);
    for (;;) {
        Query query(store, Statement::kNextValue);
        query.Bind(1, id).Bind(2, walk.m_lastValue);
        if (!query.Step()) {
            return MissingOrDeleted(store, id, kErrorNoMoreItems);
        }
        walk.m_lastValue = query.Integer(0);
        if (walk.m_nextValue++ == index) {
            return CopyNamedValue(query, name, target);
        }
    }
}

using List = std::span<const CacheEntry* const>;

bool FindList(const RegistryCache& cache, CacheKind kind, i64 id, KeyWalk& walk,
              List& items) noexcept {
    const u32 epoch = cache.Epoch();
    if (walk.m_list == nullptr || walk.m_listEpoch != epoch || walk.m_list->m_kind != kind) {
        walk.m_list = cache.Find(kind, id, {});
        walk.m_listEpoch = epoch;
    }
    if (walk.m_list == nullptr || walk.m_list->m_number == CacheEntry::kTooLong) {
        return false;
    }
    items = {walk.m_list->Items(), static_cast<std::size_t>(walk.m_list->m_number)};
    return true;
}

// Where the entry behind the walk's last one stands in the list: where it should, or else where a
// search finds it. `isPast` tells an entry that comes behind the last one.
template <typename IsPast>
std::size_t PlaceInList(const List& items, u32 place, IsPast&& isPast) noexcept {
    if (place <= items.size() && (place == 0 || !isPast(items[place - 1])) &&
        (place == items.size() || isPast(items[place]))) {
        return place;
    }
    const auto isNotPast = [&](const CacheEntry* entry) { return !isPast(entry); };
    return static_cast<std::size_t>(std::partition_point(items.begin(), items.end(), isNotPast) -
                                    items.begin());
}

// Goes on by as many entries as the index is ahead. Null behind the last one; then the walk stands
// there.
const CacheEntry* Advance(const List& items, std::size_t from, u32 index, u32& next,
                          u32& place) noexcept {
    const std::size_t wanted = from + (index - next);
    const bool isThere = wanted < items.size();
    const std::size_t reached = isThere ? wanted + 1 : items.size();
    next += static_cast<u32>(reached - from);
    place = static_cast<u32>(reached);
    return isThere ? items[wanted] : nullptr;
}

}  // namespace

std::string PathOfBase(RegistryStore& store, const KeyReference& base) {
    if (IsRoot(base.m_id)) {
        return StoredName(TreeName(base.m_id));
    }
    if (!IsOfThisStore(store, base)) {
        return {};
    }
    Query query(store, Statement::kKeyPath);
    query.Bind(1, base.m_id);
    return query.Step() ? std::string(query.Blob(0)) : std::string();
}

bool FindKey(RegistryStore& store, std::string_view path, i64& id) {
    Query query(store, Statement::kFindKey);
    query.Bind(1, path);
    if (!query.Step()) {
        return false;
    }
    id = query.Integer(0);
    if (!IsNumberOf(id, path)) {
        ThrowDamaged();
    }
    return true;
}

u32 MissingOrDeleted(RegistryStore& store, i64 key, u32 missing) {
    Query query(store, Statement::kKeyPath);
    query.Bind(1, key);
    return query.Step() ? missing : static_cast<u32>(kErrorKeyDeleted);
}

u32 OpenRemembered(const RegistryCache& cache, i64 base, std::u16string_view path,
                   i64& id) noexcept {
    const CacheEntry* const key = cache.Find(CacheKind::kPath, base, path);
    if (key == nullptr) {
        return kNotRemembered;
    }
    id = key->m_number;
    return id != 0 ? kErrorSuccess : kErrorFileNotFound;
}

u32 ReadRemembered(const RegistryCache& cache, i64 id, std::u16string_view name,
                   const ValueTarget& target) noexcept {
    const CacheEntry* const value = cache.Find(CacheKind::kValue, id, name);
    if (value == nullptr) {
        return kNotRemembered;
    }
    return value->m_number != 0 ? CopyValue(value->m_type, value->Data(), value->m_size, target)
                                : static_cast<u32>(kErrorFileNotFound);
}

i64 RowRemembered(const RegistryCache& cache, i64 id, std::u16string_view name) noexcept {
    const CacheEntry* const value = cache.Find(CacheKind::kValue, id, name);
    return value != nullptr ? value->m_number : 0;
}

u32 NextRememberedValue(const RegistryCache& cache, i64 id, u32 index, KeyWalk& walk,
                        const NameTarget& name, const ValueTarget& target) noexcept {
    List items;
    if (!FindList(cache, CacheKind::kValueList, id, walk, items)) {
        return kNotRemembered;
    }
    RestartValuesIfBehind(walk, index);
    const std::size_t from = PlaceInList(
        items, walk.m_placeOfValue,
        [&walk](const CacheEntry* entry) { return entry->m_number > walk.m_lastValue; });
    const CacheEntry* const value =
        Advance(items, from, index, walk.m_nextValue, walk.m_placeOfValue);
    if (walk.m_placeOfValue != 0) {
        walk.m_lastValue = std::max(walk.m_lastValue, items[walk.m_placeOfValue - 1]->m_number);
    }
    if (value == nullptr) {
        return kErrorNoMoreItems;
    }
    const bool fits = CopyName(value->Name(), name);
    const u32 error = CopyValue(value->m_type, value->Data(), value->m_size, target);
    return fits ? error : static_cast<u32>(kErrorMoreData);
}

u32 NextRememberedKey(const RegistryCache& cache, i64 id, u32 index, KeyWalk& walk,
                      const NameTarget& name) noexcept {
    List items;
    if (!FindList(cache, CacheKind::kKeyList, id, walk, items) ||
        walk.m_lastKey.capacity() < 2 * kMaxKeyName) {
        return kNotRemembered;
    }
    RestartKeysIfBehind(walk, index);
    const std::size_t from =
        PlaceInList(items, walk.m_placeOfKey, [&walk](const CacheEntry* entry) {
            return CompareWithStored(entry->Folded(), walk.m_lastKey) > 0;
        });
    const CacheEntry* const key = Advance(items, from, index, walk.m_nextKey, walk.m_placeOfKey);
    if (walk.m_placeOfKey > from) {
        AssignStoredName(walk.m_lastKey, items[walk.m_placeOfKey - 1]->Folded());
    }
    if (key == nullptr) {
        return kErrorNoMoreItems;
    }
    return CopyName(key->Name(), name) ? kErrorSuccess : kErrorMoreData;
}

u32 FindKeyBelow(RegistryStore& store, const KeyReference& base, const char16_t* path, i64& id) {
    MemoryFill fill(store);
    FoldedText folded;
    const bool canBeKept = folded.SetPath(path) && IsOfThisStore(store, base);
    u32 error = canBeKept && fill ? OpenRemembered(fill.Cache(), base.m_id, folded.Get(), id)
                                  : kNotRemembered;
    if (error != kNotRemembered) {
        return error;
    }
    error = FindStoredKey(store, base, path, id);
    if (canBeKept && error == kErrorSuccess) {
        fill.KeepKey(base.m_id, folded.Get(), id);
    } else if (canBeKept && error == kErrorFileNotFound) {
        fill.KeepAbsence(CacheKind::kPath, base.m_id, folded.Get());
    }
    return error;
}

u32 ReadValue(RegistryStore& store, i64 id, std::u16string_view name, const ValueTarget& target) {
    MemoryFill fill(store);
    FoldedText folded;
    const bool canBeKept = folded.SetName(name);
    const u32 error =
        canBeKept && fill ? ReadRemembered(fill.Cache(), id, folded.Get(), target) : kNotRemembered;
    return error != kNotRemembered
               ? error
               : ReadStoredValue(store, id, name, target, fill, canBeKept ? &folded : nullptr);
}

u32 NextKey(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, const NameTarget& name) {
    KeepKeys(store, id, index);
    walk.m_lastKey.reserve(2 * kMaxKeyName);
    MemoryFill fill(store);
    const u32 error =
        fill ? NextRememberedKey(fill.Cache(), id, index, walk, name) : kNotRemembered;
    return error != kNotRemembered ? error : NextStoredKey(store, id, index, walk, name);
}

u32 NextValue(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, const NameTarget& name,
              const ValueTarget& target) {
    KeepValues(store, id, index);
    MemoryFill fill(store);
    const u32 error =
        fill ? NextRememberedValue(fill.Cache(), id, index, walk, name, target) : kNotRemembered;
    return error != kNotRemembered ? error : NextStoredValue(store, id, index, walk, name, target);
}

}  // namespace platform

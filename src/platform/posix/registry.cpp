// The operations of the registry on the stores. Each takes the lock of one store for its length.
#include "platform/registry.h"

#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "platform/errors.h"
#include "registry_names.h"
#include "registry_query.h"
#include "registry_run.h"
#include "registry_schema.h"

namespace platform {

// Where the walks through a key's keys and values stand: the index that comes next, and the entry
// before it. A step looks for what follows that entry, so it costs the same at any index.
struct KeyWalk {
    u32 m_nextKey = 0;
    std::string m_lastKey;
    u32 m_nextValue = 0;
    i64 m_lastValue = 0;
};

// A key of a store by its number, so that it outlives the connection of the store, and what may be
// done with it. Of a store that was replaced the numbers mean nothing.
struct KeyReference {
    i64 m_id;
    StoreNumber m_store;
    u32 m_access;
    u32 m_incarnation;

    bool Allows(u32 right) const noexcept { return (m_access & right) != 0; }
};

struct RegistryKey {
    KeyReference m_reference;
    KeyWalk m_walk;
};

namespace {

constexpr u32 kWriteRights = 0xD0006;  // set a value, create a key, delete, change owner or list
constexpr u32 kCreatedNewKey = 1;
constexpr u32 kOpenedExistingKey = 2;
constexpr std::size_t kMaxDepth = 512;

bool IsRoot(i64 id) noexcept {
    return id <= kTreeUser;
}

bool IsOfThisStore(RegistryStore& store, const KeyReference& key) noexcept {
    return IsRoot(key.m_id) || key.m_incarnation == store.Incarnation();
}

RegistryStore::Purpose PurposeOf(u32 access) noexcept {
    return (access & kWriteRights) != 0 ? RegistryStore::Purpose::kWrite
                                        : RegistryStore::Purpose::kRead;
}

bool FindRoot(PredefinedRoot root, u32 view, KeyReference& base) noexcept {
    const bool wants32 = (view & kKeyWow64View32) != 0;
    switch (root) {
        case kHkeyClassesRoot:
            base = {wants32 ? kTreeClasses32 : kTreeClasses64, StoreNumber::kMachine, ~0u, 0};
            return true;
        case kHkeyLocalMachine:
            base = {wants32 ? kTreeConfig32 : kTreeConfig64, StoreNumber::kMachine, ~0u, 0};
            return true;
        case kHkeyCurrentUser:
            base = {kTreeUser, StoreNumber::kUser, ~0u, 0};
            return true;
        default:
            return false;
    }
}

bool IsPredefined(HKEY key) noexcept {
    return reinterpret_cast<std::intptr_t>(key) < 0;
}

bool FindBase(HKEY key, u32 view, KeyReference& base) noexcept {
    if (IsPredefined(key)) {
        const auto value = static_cast<u32>(reinterpret_cast<std::uintptr_t>(key));
        return FindRoot(static_cast<PredefinedRoot>(value), view, base);
    }
    if (key == nullptr) {
        return false;
    }
    base = key->m_reference;
    return true;
}

// The stored path of the key itself; empty if it is gone.
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

// What a missing row of a key means.
u32 MissingOrDeleted(RegistryStore& store, i64 key, u32 missing) {
    Query query(store, Statement::kKeyPath);
    query.Bind(1, key);
    return query.Step() ? missing : static_cast<u32>(kErrorKeyDeleted);
}

// The folded path of a key below another.
u32 ResolvePath(RegistryStore& store, const KeyReference& base, const char16_t* path,
                std::string& resolved) {
    resolved = PathOfBase(store, base);
    if (resolved.empty()) {
        return kErrorKeyDeleted;
    }
    return AppendFoldedPath(resolved, path) ? kErrorSuccess : kErrorInvalidParameter;
}

[[noreturn]] void ThrowDamaged() {
    throw StoreFailure{kErrorBadDatabase, false};
}

// The numbers of the roots belong to them alone, whatever the file says.
bool IsNumberOf(i64 id, std::string_view path) {
    return id > kLastReservedId ||
           (id >= kTreeClasses32 && IsRoot(id) && path == StoredName(TreeName(id)));
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

// Finds a key and tests whether it can be opened with the wanted rights.
u32 FindForOpening(RegistryStore& store, std::string_view path, u32 access, i64& id) {
    if (!FindKey(store, path, id)) {
        return kErrorFileNotFound;
    }
    return (access & kWriteRights) != 0 && !store.CanWrite() ? kErrorAccessDenied : kErrorSuccess;
}

using OwnedKey = std::unique_ptr<RegistryKey>;

OwnedKey NewKey(i64 id, const KeyReference& base, u32 access, RegistryStore& store) {
    return OwnedKey(new RegistryKey{.m_reference = {id, base.m_store, access, store.Incarnation()},
                                    .m_walk = {}});
}

// Runs an operation that makes a key, which is the caller's only if the operation succeeds.
template <typename Operation>
u32 RunForKey(StoreNumber which, HKEY* opened, Operation&& operation) noexcept {
    OwnedKey key;
    const u32 error =
        RunOnStore(which, [&](RegistryStore& store) { return operation(store, key); });
    if (error == kErrorSuccess) {
        *opened = key.release();
    }
    return error;
}

i64 AddKey(RegistryStore& store, i64 parent, std::u16string_view name, std::string_view path) {
    const std::string folded = FoldedName(name);
    const std::string spelled = StoredName(name);
    Query(store, Statement::kAddKey)
        .Bind(1, parent)
        .Bind(2, folded)
        .Bind(3, spelled)
        .Bind(4, path)
        .Step();
    return ::sqlite3_last_insert_rowid(store.Database());
}

// Makes what is missing on the way from a key down along a path.
u32 AddMissingKeys(RegistryStore& store, const KeyReference& base, const char16_t* path, i64& id) {
    std::string reached = PathOfBase(store, base);
    if (reached.empty()) {
        return kErrorKeyDeleted;
    }
    id = base.m_id;
    std::u16string_view component;
    for (std::size_t depth = 0; TakeComponent(path, component); ++depth) {
        if (component.size() > kMaxKeyName || depth == kMaxDepth) {
            return kErrorInvalidParameter;
        }
        AppendFoldedComponent(reached, component);
        i64 found;
        id = FindKey(store, reached, found) ? found : AddKey(store, id, component, reached);
    }
    return kErrorSuccess;
}

u32 CreateKey(RegistryStore& store, const KeyReference& base, const char16_t* path, i64& id) {
    store.OpenForWriting();
    WriteTransaction transaction(store);
    const u32 error = AddMissingKeys(store, base, path, id);
    if (error == kErrorSuccess) {
        transaction.Commit();
    }
    return error;
}

// A key is always made before those below it, so that a walk downwards comes to its end in any
// file.
u32 OpenExisting(RegistryStore& store, const KeyReference& base, const char16_t* path, u32 access,
                 i64& id) {
    if (!store.Open(PurposeOf(access))) {
        return kErrorFileNotFound;
    }
    std::string resolved;
    u32 error = ResolvePath(store, base, path, resolved);
    if (error == kErrorSuccess) {
        error = FindForOpening(store, resolved, access, id);
    }
    if (error == kErrorSuccess && id < base.m_id + HasComponent(path)) {
        ThrowDamaged();
    }
    return error;
}

u32 DeleteLeaf(RegistryStore& store, i64 id) {
    if (Query(store, Statement::kFirstChild).Bind(1, id).Step()) {
        return kErrorAccessDenied;
    }
    Query(store, Statement::kDeleteKeyValues).Bind(1, id).Step();
    Query(store, Statement::kDeleteKey).Bind(1, id).Step();
    return kErrorSuccess;
}

// Between the look that found the key and the transaction another process may have deleted it.
u32 DeleteKey(RegistryStore& store, i64 id) {
    store.OpenForWriting();
    WriteTransaction transaction(store);
    u32 error = MissingOrDeleted(store, id, kErrorSuccess);
    if (error == kErrorSuccess) {
        error = DeleteLeaf(store, id);
    }
    if (error == kErrorSuccess) {
        transaction.Commit();
    }
    return error == kErrorKeyDeleted ? static_cast<u32>(kErrorFileNotFound) : error;
}

std::u16string_view NameOrDefault(const char16_t* name) noexcept {
    return name != nullptr ? std::u16string_view(name) : std::u16string_view();
}

// Where a value is written to. All but `m_size` may be null.
struct ValueTarget {
    u32* m_type;
    void* m_data;
    u32* m_size;
};

u32 CopyValue(Query& query, int typeColumn, const ValueTarget& target) noexcept {
    const std::string_view data = query.Blob(typeColumn + 1);
    if (target.m_type != nullptr) {
        *target.m_type = static_cast<u32>(query.Integer(typeColumn));
    }
    if (target.m_size == nullptr) {
        return kErrorSuccess;
    }
    const u32 capacity = *target.m_size;
    *target.m_size = static_cast<u32>(data.size());
    if (target.m_data == nullptr) {
        return kErrorSuccess;
    }
    if (data.size() > capacity) {
        return kErrorMoreData;
    }
    if (!data.empty()) {
        std::memcpy(target.m_data, data.data(), data.size());
    }
    return kErrorSuccess;
}

// Runs an operation on the store of an open key with the key's number.
template <typename Operation>
u32 RunOnKey(HKEY key, u32 right, Operation&& operation) noexcept {
    KeyReference base;
    if (!FindBase(key, 0, base)) {
        return kErrorInvalidHandle;
    }
    if (!base.Allows(right)) {
        return kErrorAccessDenied;
    }
    return RunOnStore(base.m_store, [&](RegistryStore& store) -> u32 {
        if (!store.Open(PurposeOf(right))) {
            return kErrorFileNotFound;
        }
        return IsOfThisStore(store, base) ? operation(store, base.m_id) : kErrorKeyDeleted;
    });
}

// As above, for a value; with its folded name.
template <typename Operation>
u32 RunOnValue(HKEY key, const char16_t* name, u32 right, Operation&& operation) noexcept {
    return RunOnKey(key, right, [&](RegistryStore& store, i64 id) -> u32 {
        const std::u16string_view text = NameOrDefault(name);
        if (text.size() > kMaxValueName) {
            return kErrorInvalidParameter;
        }
        return operation(store, id, text, FoldedName(text));
    });
}

// A predefined key has no place to keep a walk in: each step starts afresh.
KeyWalk* WalkOf(HKEY key, KeyWalk& fresh) noexcept {
    return IsPredefined(key) ? &fresh : &key->m_walk;
}

u32 NextKey(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, char16_t* name, u32* length) {
    if (index < walk.m_nextKey) {
        walk.m_nextKey = 0;
        walk.m_lastKey.clear();
    }
    for (;;) {
        Query query(store, Statement::kNextChild);
        query.Bind(1, id).Bind(2, walk.m_lastKey);
        if (!query.Step()) {
            return MissingOrDeleted(store, id, kErrorNoMoreItems);
        }
        std::string passed(query.Blob(0));
        std::swap(walk.m_lastKey, passed);
        if (walk.m_nextKey++ == index) {
            if (!IsStoredComponent(query.Blob(1))) {
                ThrowDamaged();
            }
            return CopyStoredName(query.Blob(1), name, *length, length) ? kErrorSuccess
                                                                        : kErrorMoreData;
        }
    }
}

u32 CopyNamedValue(Query& query, char16_t* name, u32* length, const ValueTarget& target) {
    const bool fits = CopyStoredName(query.Blob(1), name, *length, length);
    const u32 error = CopyValue(query, 2, target);
    return fits ? error : static_cast<u32>(kErrorMoreData);
}

u32 NextValue(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, char16_t* name, u32* length,
              const ValueTarget& target) {
    if (index < walk.m_nextValue) {
        walk.m_nextValue = 0;
        walk.m_lastValue = 0;
    }
    for (;;) {
        Query query(store, Statement::kNextValue);
        query.Bind(1, id).Bind(2, walk.m_lastValue);
        if (!query.Step()) {
            return MissingOrDeleted(store, id, kErrorNoMoreItems);
        }
        walk.m_lastValue = query.Integer(0);
        if (walk.m_nextValue++ == index) {
            return CopyNamedValue(query, name, length, target);
        }
    }
}

}  // namespace

u32 RegOpenKeyExW(HKEY key, const char16_t* path, u32, u32 access, HKEY* opened) noexcept {
    KeyReference base;
    if (!FindBase(key, access, base)) {
        return kErrorInvalidHandle;
    }
    return RunForKey(base.m_store, opened, [&](RegistryStore& store, OwnedKey& made) -> u32 {
        i64 id;
        const u32 error = OpenExisting(store, base, path, access, id);
        if (error == kErrorSuccess) {
            made = NewKey(id, base, access, store);
        }
        return error;
    });
}

u32 RegCreateKeyExW(HKEY key, const char16_t* path, u32, const char16_t*, u32, u32 access,
                    const SECURITY_ATTRIBUTES*, HKEY* opened, u32* disposition) noexcept {
    KeyReference base;
    if (!FindBase(key, access, base)) {
        return kErrorInvalidHandle;
    }
    return RunForKey(base.m_store, opened, [&](RegistryStore& store, OwnedKey& made) -> u32 {
        i64 id;
        u32 error = OpenExisting(store, base, path, access, id);
        const bool missing = error == kErrorFileNotFound;
        if (missing) {
            error = CreateKey(store, base, path, id);
        }
        if (error == kErrorSuccess) {
            made = NewKey(id, base, access, store);
            *disposition = missing ? kCreatedNewKey : kOpenedExistingKey;
        }
        return error;
    });
}

u32 RegCloseKey(HKEY key) noexcept {
    if (key == nullptr || key == PredefinedKey(kHkeyInvalid)) {
        return kErrorInvalidHandle;
    }
    if (!IsPredefined(key)) {
        delete key;
    }
    return kErrorSuccess;
}

u32 RegQueryValueExW(HKEY key, const char16_t* name, u32*, u32* type, void* data,
                     u32* size) noexcept {
    if (data != nullptr && size == nullptr) {
        return kErrorInvalidParameter;
    }
    return RunOnValue(
        key, name, kKeyQueryValue,
        [&](RegistryStore& store, i64 id, std::u16string_view, const std::string& folded) -> u32 {
            Query query(store, Statement::kReadValue);
            query.Bind(1, id).Bind(2, folded);
            return query.Step() ? CopyValue(query, 0, {type, data, size})
                                : MissingOrDeleted(store, id, kErrorFileNotFound);
        });
}

u32 RegSetValueExW(HKEY key, const char16_t* name, u32, u32 type, const void* data,
                   u32 size) noexcept {
    if (data == nullptr && size != 0) {
        return kErrorInvalidParameter;
    }
    const std::string_view bytes(static_cast<const char*>(data), size);
    return RunOnValue(key, name, kKeySetValue,
                      [&](RegistryStore& store, i64 id, std::u16string_view text,
                          const std::string& folded) -> u32 {
                          store.OpenForWriting();
                          const std::string spelled = StoredName(text);
                          Query(store, Statement::kWriteValue)
                              .Bind(1, id)
                              .Bind(2, folded)
                              .Bind(3, spelled)
                              .Bind(4, i64{type})
                              .Bind(5, bytes)
                              .Step();
                          return ::sqlite3_changes(store.Database()) != 0 ? kErrorSuccess
                                                                          : kErrorKeyDeleted;
                      });
}

u32 RegDeleteKeyExW(HKEY key, const char16_t* path, u32 view, u32) noexcept {
    KeyReference base;
    if (!FindBase(key, view, base)) {
        return kErrorInvalidHandle;
    }
    return RunOnStore(base.m_store, [&](RegistryStore& store) -> u32 {
        i64 id;
        const u32 error = OpenExisting(store, base, path, kKeyAllAccess, id);
        if (error != kErrorSuccess) {
            return error;
        }
        return IsRoot(id) ? kErrorAccessDenied : DeleteKey(store, id);
    });
}

u32 RegDeleteValueW(HKEY key, const char16_t* name) noexcept {
    return RunOnValue(
        key, name, kKeySetValue,
        [&](RegistryStore& store, i64 id, std::u16string_view, const std::string& folded) -> u32 {
            store.OpenForWriting();
            Query(store, Statement::kDeleteValue).Bind(1, id).Bind(2, folded).Step();
            return ::sqlite3_changes(store.Database()) != 0
                       ? kErrorSuccess
                       : MissingOrDeleted(store, id, kErrorFileNotFound);
        });
}

u32 RegEnumKeyExW(HKEY key, u32 index, char16_t* name, u32* length, u32*, char16_t*, u32*,
                  FILETIME* written) noexcept {
    return RunOnKey(key, kKeyEnumerateSubKeys, [&](RegistryStore& store, i64 id) -> u32 {
        KeyWalk fresh;
        const u32 error = NextKey(store, id, index, *WalkOf(key, fresh), name, length);
        if (error == kErrorSuccess && written != nullptr) {
            *written = {};
        }
        return error;
    });
}

u32 RegEnumValueW(HKEY key, u32 index, char16_t* name, u32* length, u32*, u32* type, void* data,
                  u32* size) noexcept {
    if (data != nullptr && size == nullptr) {
        return kErrorInvalidParameter;
    }
    return RunOnKey(key, kKeyQueryValue, [&](RegistryStore& store, i64 id) -> u32 {
        KeyWalk fresh;
        return NextValue(store, id, index, *WalkOf(key, fresh), name, length, {type, data, size});
    });
}

}  // namespace platform

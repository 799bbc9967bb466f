// The operations of the registry. One that reads asks the process's memory of the store first, and
// takes the store's lock if that does not know.
#include "platform/registry.h"

#include <memory>
#include <new>
#include <string>

#include "platform/errors.h"
#include "registry_fill.h"
#include "registry_key.h"
#include "registry_lookup.h"
#include "registry_names.h"
#include "registry_query.h"
#include "registry_run.h"

namespace platform {
namespace {

constexpr u32 kCreatedNewKey = 1;
constexpr u32 kOpenedExistingKey = 2;
constexpr std::size_t kMaxDepth = 512;

RegistryStore::Purpose PurposeOf(u32 access) noexcept {
    return (access & kWriteRights) != 0 ? RegistryStore::Purpose::kWrite
                                        : RegistryStore::Purpose::kRead;
}

using OwnedKey = std::unique_ptr<RegistryKey>;

OwnedKey NewKey(i64 id, const KeyReference& base, u32 access, const RegistryStore& store) {
    return OwnedKey(new RegistryKey{.m_reference = {id, base.m_store, access, store.Incarnation()},
                                    .m_walk = {}});
}

// Asks what the process remembers of a store, if that is current. `lookup` neither throws, nor
// allocates, nor waits, nor can be cancelled: it may be interrupted by a handler that uses the
// registry itself or forks. Who has opened a key may read it whoever he acts for meanwhile.
template <typename Lookup>
u32 AskMemory(const KeyReference& base, Lookup&& lookup) noexcept {
    RegistryStore& store = StoreOf(base.m_store);
    const MemoryUse use(store.Memory(), base.m_store);
    const bool answers =
        use && IsOfThisStore(store, base) && (!IsRoot(base.m_id) || store.Memory().RightsHold());
    return answers ? lookup(store.Memory().Cache()) : kNotRemembered;
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
    return sqlite::last_insert_rowid(store.Database());
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

// The absence of a key is told before a lack of rights.
u32 OpenExisting(RegistryStore& store, const KeyReference& base, const char16_t* path, u32 access,
                 i64& id) {
    if (!store.Open(PurposeOf(access))) {
        return kErrorFileNotFound;
    }
    const u32 error = FindKeyBelow(store, base, path, id);
    const bool writes = (access & kWriteRights) != 0;
    return error == kErrorSuccess && writes && !store.CanWrite()
               ? static_cast<u32>(kErrorAccessDenied)
               : error;
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

u32 CheckValue(std::u16string_view name, const ValueTarget& target) noexcept {
    const bool valid =
        (target.m_data == nullptr || target.m_size != nullptr) && name.size() <= kMaxValueName;
    return valid ? kErrorSuccess : kErrorInvalidParameter;
}

// The row is the remembered one, which need not be there any more, or not be this value's.
bool Overwrite(RegistryStore& store, const StoredValue& value, std::string_view folded) {
    Query(store, Statement::kOverwriteValue)
        .Bind(1, value.m_key)
        .Bind(2, folded)
        .Bind(3, value.m_row)
        .Bind(4, i64{value.m_type})
        .Bind(5, value.m_data)
        .Step();
    return sqlite::changes(store.Database()) != 0;
}

// Writes nothing below a key that is gone.
bool AddOrOverwrite(RegistryStore& store, StoredValue& value, std::string_view folded,
                    std::u16string_view name) {
    const std::string spelled = StoredName(name);
    Query(store, Statement::kWriteValue)
        .Bind(1, value.m_key)
        .Bind(2, folded)
        .Bind(3, spelled)
        .Bind(4, i64{value.m_type})
        .Bind(5, value.m_data)
        .Step();
    value.m_row = store.Connection().WrittenRow();
    return sqlite::changes(store.Database()) != 0;
}

u32 WriteValue(RegistryStore& store, i64 id, std::u16string_view name, u32 type,
               std::string_view data) {
    store.OpenForWriting();
    RegistryCache& cache = store.Memory().Cache();
    FoldedText key;
    const bool canBeKept = key.SetName(name);
    StoredValue value{.m_key = id,
                      .m_row = canBeKept ? RowRemembered(cache, id, key.Get()) : 0,
                      .m_type = type,
                      .m_data = data};
    const std::string folded = FoldedName(name);
    StoreMemory::OwnWrite write(store.Memory(), store.Connection());
    const bool overwritten = value.m_row != 0 && Overwrite(store, value, folded);
    if (!overwritten && !AddOrOverwrite(store, value, folded, name)) {
        return kErrorKeyDeleted;
    }
    if (canBeKept && write.CanFollow()) {
        KeepWritten(cache, key.Get(), value);
        write.Follow();
    }
    return kErrorSuccess;
}

u32 DeleteValue(RegistryStore& store, i64 id, std::u16string_view name) {
    store.OpenForWriting();
    const std::string folded = FoldedName(name);
    StoreMemory::OwnWrite write(store.Memory(), store.Connection());
    Query(store, Statement::kDeleteValue).Bind(1, id).Bind(2, folded).Step();
    if (sqlite::changes(store.Database()) == 0) {
        return MissingOrDeleted(store, id, kErrorFileNotFound);
    }
    FoldedText key;
    if (key.SetName(name) && write.CanFollow()) {
        KeepDeleted(store.Memory().Cache(), id, key.Get());
        write.Follow();
    }
    return kErrorSuccess;
}

u32 OpenOrCreate(RegistryStore& store, const KeyReference& base, const char16_t* path, i64& id,
                 u32& disposition) {
    const u32 error = OpenExisting(store, base, path, kKeyAllAccess, id);
    disposition = error == kErrorFileNotFound ? kCreatedNewKey : kOpenedExistingKey;
    return error == kErrorFileNotFound ? CreateKey(store, base, path, id) : error;
}

u32 FindKeyReference(HKEY key, u32 right, KeyReference& base) noexcept {
    if (!FindBase(key, 0, base)) {
        return kErrorInvalidHandle;
    }
    return base.Allows(right) ? kErrorSuccess : kErrorAccessDenied;
}

// Runs an operation on the store of an open key.
template <typename Operation>
u32 RunOnKey(const KeyReference& key, u32 right, Operation&& operation) noexcept {
    return RunOnStore(key.m_store, [&](RegistryStore& store) -> u32 {
        if (!store.Open(PurposeOf(right))) {
            return kErrorFileNotFound;
        }
        return IsOfThisStore(store, key) ? operation(store) : kErrorKeyDeleted;
    });
}

// A predefined key has no place to keep a walk in: each step starts afresh.
KeyWalk& WalkOf(HKEY key, KeyWalk& fresh) noexcept {
    return IsPredefined(key) ? fresh : key->m_walk;
}

u32 FindFromMemory(const KeyReference& base, const char16_t* path, u32 access, i64& id) noexcept {
    FoldedText folded;
    if ((access & kWriteRights) != 0 || !folded.SetPath(path)) {
        return kNotRemembered;
    }
    return AskMemory(base, [&](const RegistryCache& cache) {
        return OpenRemembered(cache, base.m_id, folded.Get(), id);
    });
}

u32 QueryFromMemory(const KeyReference& key, std::u16string_view name,
                    const ValueTarget& target) noexcept {
    FoldedText folded;
    if (!folded.SetName(name)) {
        return kNotRemembered;
    }
    return AskMemory(key, [&](const RegistryCache& cache) {
        return ReadRemembered(cache, key.m_id, folded.Get(), target);
    });
}

u32 ReadFromMemory(const KeyReference& base, const char16_t* path, std::u16string_view name,
                   const ValueTarget& target) noexcept {
    FoldedText foldedPath;
    FoldedText foldedName;
    if (!foldedPath.SetPath(path) || !foldedName.SetName(name)) {
        return kNotRemembered;
    }
    return AskMemory(base, [&](const RegistryCache& cache) {
        i64 id;
        const u32 error = OpenRemembered(cache, base.m_id, foldedPath.Get(), id);
        return error != kErrorSuccess ? error : ReadRemembered(cache, id, foldedName.Get(), target);
    });
}

}  // namespace

u32 RegOpenKeyExW(HKEY key, const char16_t* path, u32, u32 access, HKEY* opened) noexcept {
    KeyReference base;
    if (!FindBase(key, access, base)) {
        return kErrorInvalidHandle;
    }
    i64 id;
    if (FindFromMemory(base, path, access, id) == kErrorSuccess) {
        const u32 incarnation = StoreOf(base.m_store).Incarnation();
        *opened = new (std::nothrow)
            RegistryKey{.m_reference = {id, base.m_store, access, incarnation}, .m_walk = {}};
        return *opened != nullptr ? kErrorSuccess : kErrorOutOfMemory;
    }
    return RunForKey(base.m_store, opened, [&](RegistryStore& store, OwnedKey& made) -> u32 {
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
        const u32 error = OpenOrCreate(store, base, path, id, *disposition);
        if (error == kErrorSuccess) {
            made = NewKey(id, base, access, store);
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
    const std::u16string_view text = NameOrDefault(name);
    const ValueTarget target{type, data, size};
    if (const u32 error = CheckValue(text, target)) {
        return error;
    }
    KeyReference base;
    if (const u32 error = FindKeyReference(key, kKeyQueryValue, base)) {
        return error;
    }
    const u32 error = QueryFromMemory(base, text, target);
    return error != kNotRemembered ? error
                                   : RunOnKey(base, kKeyQueryValue, [&](RegistryStore& store) {
                                         return ReadValue(store, base.m_id, text, target);
                                     });
}

u32 ReadRegistryValue(HKEY key, const char16_t* path, u32 view, const char16_t* name, u32* type,
                      void* data, u32* size) noexcept {
    KeyReference base;
    if (!FindBase(key, view, base)) {
        return kErrorInvalidHandle;
    }
    const std::u16string_view text = NameOrDefault(name);
    const ValueTarget target{type, data, size};
    const u32 invalid = CheckValue(text, target);
    if (invalid == kErrorSuccess) {
        const u32 error = ReadFromMemory(base, path, text, target);
        if (error != kNotRemembered) {
            return error;
        }
    }
    return RunOnStore(base.m_store, [&](RegistryStore& store) -> u32 {
        i64 id;
        const u32 error = OpenExisting(store, base, path, kKeyRead, id);
        if (error != kErrorSuccess || invalid != kErrorSuccess) {
            return error != kErrorSuccess ? error : invalid;
        }
        return ReadValue(store, id, text, target);
    });
}

u32 WriteRegistryValue(HKEY key, const char16_t* path, u32 view, const SECURITY_ATTRIBUTES*,
                       const char16_t* name, u32 type, const void* data, u32 size) noexcept {
    KeyReference base;
    if (!FindBase(key, view, base)) {
        return kErrorInvalidHandle;
    }
    const std::u16string_view text = NameOrDefault(name);
    const bool valid = (data != nullptr || size == 0) && text.size() <= kMaxValueName;
    return RunOnStore(base.m_store, [&](RegistryStore& store) -> u32 {
        i64 id;
        u32 disposition;
        const u32 error = OpenOrCreate(store, base, path, id, disposition);
        if (error != kErrorSuccess || !valid) {
            return error != kErrorSuccess ? error : kErrorInvalidParameter;
        }
        return WriteValue(store, id, text, type, {static_cast<const char*>(data), size});
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
    KeyReference base;
    if (const u32 error = FindKeyReference(key, kKeySetValue, base)) {
        return error;
    }
    return RunOnKey(base, kKeySetValue, [&](RegistryStore& store) -> u32 {
        const std::u16string_view text = NameOrDefault(name);
        return text.size() <= kMaxValueName ? DeleteValue(store, base.m_id, text)
                                            : kErrorInvalidParameter;
    });
}

u32 RegEnumKeyExW(HKEY key, u32 index, char16_t* name, u32* length, u32*, char16_t*, u32*,
                  FILETIME* written) noexcept {
    KeyReference base;
    if (const u32 error = FindKeyReference(key, kKeyEnumerateSubKeys, base)) {
        return error;
    }
    KeyWalk fresh;
    KeyWalk& walk = WalkOf(key, fresh);
    const NameTarget target{name, length};
    u32 error = AskMemory(base, [&](const RegistryCache& cache) {
        return NextRememberedKey(cache, base.m_id, index, walk, target);
    });
    if (error == kNotRemembered) {
        error = RunOnKey(base, kKeyEnumerateSubKeys, [&](RegistryStore& store) {
            return NextKey(store, base.m_id, index, walk, target);
        });
    }
    if (error == kErrorSuccess && written != nullptr) {
        *written = {};
    }
    return error;
}

u32 RegEnumValueW(HKEY key, u32 index, char16_t* name, u32* length, u32*, u32* type, void* data,
                  u32* size) noexcept {
    const ValueTarget value{type, data, size};
    if (const u32 error = CheckValue({}, value)) {
        return error;
    }
    KeyReference base;
    if (const u32 error = FindKeyReference(key, kKeyQueryValue, base)) {
        return error;
    }
    KeyWalk fresh;
    KeyWalk& walk = WalkOf(key, fresh);
    const NameTarget target{name, length};
    const u32 error = AskMemory(base, [&](const RegistryCache& cache) {
        return NextRememberedValue(cache, base.m_id, index, walk, target, value);
    });
    return error != kNotRemembered
               ? error
               : RunOnKey(base, kKeyQueryValue, [&](RegistryStore& store) {
                     return NextValue(store, base.m_id, index, walk, target, value);
                 });
}

}  // namespace platform

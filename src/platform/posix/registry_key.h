// Open keys.
#ifndef QX_PLATFORM_POSIX_REGISTRY_KEY_H
#define QX_PLATFORM_POSIX_REGISTRY_KEY_H

#include <string>

#include "platform/registry.h"
#include "registry_schema.h"
#include "registry_store.h"

namespace platform {

// Where the walks through a key's keys and values stand: the index that comes next, and the entry
// before it. A step looks for what follows that entry, so it costs the same at any index. Where the
// entry stood in a list that was remembered says where to look for it in that list, which stays the
// same one for as long as the cache has the same epoch.
struct KeyWalk {
    const CacheEntry* m_list = nullptr;
    u32 m_listEpoch = 0;
    u32 m_nextKey = 0;
    u32 m_placeOfKey = 0;
    std::string m_lastKey;
    u32 m_nextValue = 0;
    u32 m_placeOfValue = 0;
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

inline constexpr u32 kWriteRights =
    0xD0006;  // set a value, create a key, delete, change owner or list

inline bool IsRoot(i64 id) noexcept {
    return id <= kTreeUser;
}

inline bool IsOfThisStore(const RegistryStore& store, const KeyReference& key) noexcept {
    return IsRoot(key.m_id) || key.m_incarnation == store.Incarnation();
}

inline bool IsPredefined(HKEY key) noexcept {
    return reinterpret_cast<std::intptr_t>(key) < 0;
}

// False for what is no key. `view` chooses between the trees of a predefined one.
bool FindBase(HKEY key, u32 view, KeyReference& base) noexcept;

}  // namespace platform

#endif

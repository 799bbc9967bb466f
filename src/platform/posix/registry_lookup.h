// How keys and values are found: in what the process remembers, or in the store.
#ifndef QX_PLATFORM_POSIX_REGISTRY_LOOKUP_H
#define QX_PLATFORM_POSIX_REGISTRY_LOOKUP_H

#include <string>
#include <string_view>

#include "registry_key.h"
#include "registry_names.h"

namespace platform {

// No number that an operation gives: nothing is remembered that answers.
inline constexpr u32 kNotRemembered = 0xFFFFFFFF;

// Where a value is written to. All may be null but `size`, and that too if `data` is. An operation
// that starts over has the same room as at first.
struct ValueTarget {
    ValueTarget(u32* type, void* data, u32* size) noexcept
        : m_type(type), m_data(data), m_size(size), m_capacity(size != nullptr ? *size : 0) {}

    u32* m_type;
    void* m_data;
    u32* m_size;
    u32 m_capacity;
};

// Where a name is written to.
struct NameTarget {
    NameTarget(char16_t* name, u32* length) noexcept
        : m_name(name), m_length(length), m_capacity(*length) {}

    char16_t* m_name;
    u32* m_length;
    u32 m_capacity;
};

// The operations on a cache answer from what it holds alone, and neither throw nor allocate.
u32 OpenRemembered(const RegistryCache& cache, i64 base, std::u16string_view path,
                   i64& id) noexcept;
u32 ReadRemembered(const RegistryCache& cache, i64 id, std::u16string_view name,
                   const ValueTarget& target) noexcept;
// 0 if there is none, or it is not known.
i64 RowRemembered(const RegistryCache& cache, i64 id, std::u16string_view name) noexcept;
u32 NextRememberedKey(const RegistryCache& cache, i64 id, u32 index, KeyWalk& walk,
                      const NameTarget& name) noexcept;
u32 NextRememberedValue(const RegistryCache& cache, i64 id, u32 index, KeyWalk& walk,
                        const NameTarget& name, const ValueTarget& target) noexcept;

// The operations on a store look into its cache first and keep there what they read. They are
// called with the store open, and throw StoreFailure or std::bad_alloc.

u32 FindKeyBelow(RegistryStore& store, const KeyReference& base, const char16_t* path, i64& id);
u32 ReadValue(RegistryStore& store, i64 id, std::u16string_view name, const ValueTarget& target);
u32 NextKey(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, const NameTarget& name);
u32 NextValue(RegistryStore& store, i64 id, u32 index, KeyWalk& walk, const NameTarget& name,
              const ValueTarget& target);

// The stored path of the key itself; empty if it is gone.
std::string PathOfBase(RegistryStore& store, const KeyReference& base);

// By its whole stored path.
bool FindKey(RegistryStore& store, std::string_view path, i64& id);

// What a missing row of a key means.
u32 MissingOrDeleted(RegistryStore& store, i64 key, u32 missing);

}  // namespace platform

#endif

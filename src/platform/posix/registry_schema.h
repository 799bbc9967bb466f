// What is inside a file of the registry.
#ifndef QX_PLATFORM_POSIX_REGISTRY_SCHEMA_H
#define QX_PLATFORM_POSIX_REGISTRY_SCHEMA_H

#include <string_view>

#include "registry_location.h"
#include "registry_sqlite.h"

namespace platform {

// The trees of the files, by the number of their root keys.
enum TreeRoot : i64 {
    kTreeClasses32 = 1,
    kTreeClasses64 = 2,
    kTreeConfig32 = 3,
    kTreeConfig64 = 4,
    kTreeUser = 5,
};

// The first component of every path in a tree. A component of a client's path cannot be confused
// with it, since it stands in front of all of them.
std::u16string_view TreeName(i64 root) noexcept;

enum class StoreContent { kNothing, kRegistry, kForeign };

// The largest number that only a root may have.
inline constexpr i64 kLastReservedId = 15;

// The operations below throw StoreFailure.

// A registry has our tables and indexes, word for word, and nothing else on them.
StoreContent IdentifyStore(sqlite3* database);

// Fills an empty database, unless another process has done so by now.
void FillStore(sqlite3* database, StoreNumber number);

// Has the database keep a write-ahead log, if it does not and this user may write. Returns whether
// it keeps one.
bool UseLog(sqlite3* database);

}  // namespace platform

#endif

// SQLite, loaded when the registry is first used: most processes do not use it, and it costs more
// to load than the library itself.
#ifndef QX_PLATFORM_POSIX_REGISTRY_SQLITE_H
#define QX_PLATFORM_POSIX_REGISTRY_SQLITE_H

#include <sqlite3.h>

#include "platform/late_function.h"

namespace platform::sqlite {

// True if the functions below may be called. To be called without a lock: the loader has one of its
// own, under which components may use the registry while they are loaded.
bool Bind() noexcept;

// No connection is open, and nothing below is called any more.
void Release() noexcept;

// Named as SQLite's own, without "sqlite3_".
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name that is declared
#define QX_SQLITE_FUNCTION(name) extern constinit LateFunction<decltype(::sqlite3_##name)> name;
#include "registry_sqlite_functions.inc"
#undef QX_SQLITE_FUNCTION

}  // namespace platform::sqlite

#endif

// How a failure of the database travels inside this back end.
#ifndef QX_PLATFORM_POSIX_REGISTRY_FAILURE_H
#define QX_PLATFORM_POSIX_REGISTRY_FAILURE_H

#include "platform/types.h"
#include "registry_sqlite.h"

namespace platform {

// A step that failed, thrown inside the back end: a native error number, and whether the step may
// succeed when other processes have gone on.
struct StoreFailure {
    u32 m_number;
    bool m_transient;
};

// What a connection's last step failed with; `database` may be null.
StoreFailure StoreFailureOf(int status, sqlite3* database) noexcept;
[[noreturn]] void ThrowStoreFailure(int status, sqlite3* database);

// Throws unless the status is one of success.
inline void CheckStatus(int status, sqlite3* database) {
    if (status != SQLITE_OK && status != SQLITE_ROW && status != SQLITE_DONE) [[unlikely]] {
        ThrowStoreFailure(status, database);
    }
}

}  // namespace platform

#endif

#include "registry_failure.h"

#include "platform/errors.h"

namespace platform {
namespace {

// A file that cannot be opened has a reason of the system's. The database itself was found to be
// there, so what is missing is a side file, which this user cannot make.
u32 OpenFailure(sqlite3* database) noexcept {
    const int error = database != nullptr ? sqlite::system_errno(database) : 0;
    return error == 0 || error == ENOENT ? static_cast<u32>(kErrorAccessDenied)
                                         : NativeErrorFromErrno(error);
}

}  // namespace

StoreFailure StoreFailureOf(int status, sqlite3* database) noexcept {
    if (status == SQLITE_READONLY_RECOVERY) {
        // A user who may only read met a writer at work on the log's index.
        return {kErrorAccessDenied, true};
    }
    switch (status & 0xFF) {
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
        case SQLITE_PROTOCOL:
            return {kErrorBusy, true};
        case SQLITE_READONLY:
        case SQLITE_PERM:
        case SQLITE_AUTH:
            return {kErrorAccessDenied, false};
        case SQLITE_CANTOPEN:
            return {OpenFailure(database), false};
        case SQLITE_NOTADB:
        case SQLITE_CORRUPT:
        case SQLITE_SCHEMA:
        case SQLITE_ERROR:      // a table or column that should be there
        case SQLITE_INTERRUPT:  // a statement without end
            return {kErrorBadDatabase, false};
        case SQLITE_FULL:
            return {kErrorDiskFull, false};
        case SQLITE_NOMEM:
            return {kErrorOutOfMemory, false};
        case SQLITE_TOOBIG:
            return {kErrorNoSystemResources, false};
        default:
            return {kErrorRegistryIoFailed, false};
    }
}

void ThrowStoreFailure(int status, sqlite3* database) {
    throw StoreFailureOf(status, database);
}

}  // namespace platform

// SQLite's way to the system, with four changes: it does not sleep, it tells of the write lock, it
// writes a frame of the log at once, and it can go without file locks.
#ifndef QX_PLATFORM_POSIX_REGISTRY_VFS_H
#define QX_PLATFORM_POSIX_REGISTRY_VFS_H

#include "registry_sqlite.h"

namespace platform {

// Who is told of the transactions of a connection that write: one is begun once SQLite holds the
// write lock, and ended before it lets it go.
class WriteMarks {
  public:
    // False if it must not be begun now.
    virtual bool Begin() noexcept = 0;
    virtual void End() noexcept = 0;

  protected:
    ~WriteMarks() = default;
};

enum class StoreVfs {
    // When other processes are in its way SQLite sleeps for up to ten seconds before it says so,
    // behind the store's lock and in the way of a fork. Opened like this it says so at once, and
    // the operation waits where it holds nothing.
    kLocking,
    // Takes no lock on the database, so that nobody else's is in its way. SQLite itself still keeps
    // account of the file's descriptors: to close one drops the locks of the whole process.
    kUnlocked,
};

// The name under which to open a database. Throws StoreFailure.
const char* StoreVfsName(StoreVfs which = StoreVfs::kLocking);

// Null for nobody.
void MarkWrites(sqlite3* database, WriteMarks* marks) noexcept;

// SQLite outlives the library.
void ForgetStoreVfs() noexcept;

}  // namespace platform

#endif

// SQLite's way to the system, with one change: it does not sleep.
#ifndef QX_PLATFORM_POSIX_REGISTRY_VFS_H
#define QX_PLATFORM_POSIX_REGISTRY_VFS_H

namespace platform {

// The name under which to open a database. When other processes are in its way SQLite sleeps for
// up to ten seconds before it says so, behind the store's lock and in the way of a fork. Opened
// like this it says so at once, and the operation waits where it holds nothing.
// Throws StoreFailure.
const char* StoreVfsName();

// SQLite outlives the library.
void ForgetStoreVfs() noexcept;

}  // namespace platform

#endif

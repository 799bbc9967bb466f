#include "registry_vfs.h"

#include <sqlite3.h>

#include <cstdio>

#include "platform/errors.h"
#include "platform/sync.h"
#include "registry_failure.h"

namespace platform {
namespace {

constinit CRITICAL_SECTION s_lock{};
constinit sqlite3_vfs s_vfs{};
constinit char s_name[32]{};

int DoNotSleep(sqlite3_vfs*, int microseconds) {
    return microseconds;
}

// Another copy of this library in the process has a name of its own.
int Register() noexcept {
    const sqlite3_vfs* const system = ::sqlite3_vfs_find("unix");
    if (system == nullptr) {
        return SQLITE_ERROR;
    }
    std::snprintf(s_name, sizeof s_name, "w64qxcore6-%p", static_cast<void*>(&s_vfs));
    s_vfs = *system;
    s_vfs.pNext = nullptr;
    s_vfs.zName = s_name;
    s_vfs.xSleep = DoNotSleep;
    return ::sqlite3_vfs_register(&s_vfs, 0);
}

}  // namespace

const char* StoreVfsName() {
    EnterCriticalSection(&s_lock);
    const int status = s_vfs.zName != nullptr ? SQLITE_OK : Register();
    if (status != SQLITE_OK) {
        s_vfs.zName = nullptr;
    }
    LeaveCriticalSection(&s_lock);
    CheckStatus(status, nullptr);
    return s_name;
}

void ForgetStoreVfs() noexcept {
    if (s_vfs.zName != nullptr) {
        ::sqlite3_vfs_unregister(&s_vfs);
        s_vfs.zName = nullptr;
    }
}

}  // namespace platform

#include "registry_vfs.h"

#include <cstddef>
#include <cstdio>
#include <new>

#include "platform/errors.h"
#include "platform/sync.h"
#include "registry_failure.h"
#include "registry_word.h"

namespace platform {
namespace {

constexpr std::size_t kVfsCount = 2;
constexpr int kWriteLock = 0;  // in the published layout of the log's index

constinit CRITICAL_SECTION s_lock{};
constinit sqlite3_vfs s_vfs[kVfsCount]{};
constinit char s_names[kVfsCount][40]{};
constinit const sqlite3_vfs* s_system = nullptr;

// What stands behind the system's own part of an open database.
struct FileAddition {
    const sqlite3_io_methods* m_system;
    StoreWord* m_word;
    sqlite3_io_methods m_methods;
};

constexpr std::size_t RoundUp(std::size_t size) noexcept {
    constexpr std::size_t kUnit = alignof(FileAddition);
    return (size + kUnit - 1) / kUnit * kUnit;
}

FileAddition& AdditionOf(sqlite3_file* file) noexcept {
    auto* const start = reinterpret_cast<std::byte*>(file);
    return *reinterpret_cast<FileAddition*>(start +
                                            RoundUp(static_cast<std::size_t>(s_system->szOsFile)));
}

int DoNotSleep(sqlite3_vfs*, int microseconds) {
    return microseconds;
}

int DoNotLock(sqlite3_file*, int) {
    return SQLITE_OK;
}

int FindNoLock(sqlite3_file*, int* found) {
    *found = 0;
    return SQLITE_OK;
}

int LockAndMark(sqlite3_file* file, int first, int count, int how) {
    const FileAddition& addition = AdditionOf(file);
    const auto change = [&](int flags) {
        return addition.m_system->xShmLock(file, first, count, flags);
    };
    if (first != kWriteLock || addition.m_word == nullptr) {
        return change(how);
    }
    if (how == (SQLITE_SHM_UNLOCK | SQLITE_SHM_EXCLUSIVE)) {
        addition.m_word->End();
        return change(how);
    }
    const int status = change(how);
    if (status == SQLITE_OK && how == (SQLITE_SHM_LOCK | SQLITE_SHM_EXCLUSIVE) &&
        !addition.m_word->Begin()) {
        change(SQLITE_SHM_UNLOCK | SQLITE_SHM_EXCLUSIVE);
        return SQLITE_BUSY;
    }
    return status;
}

template <std::size_t kWhich>
int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* opened) {
    auto& vfs = const_cast<sqlite3_vfs&>(*s_system);
    const int status = vfs.xOpen(&vfs, name, file, flags, opened);
    if (status != SQLITE_OK || (flags & SQLITE_OPEN_MAIN_DB) == 0) {
        return status;
    }
    FileAddition& addition =
        *::new (&AdditionOf(file)) FileAddition{file->pMethods, nullptr, *file->pMethods};
    if (kWhich == static_cast<std::size_t>(StoreVfs::kUnlocked)) {
        addition.m_methods.xLock = DoNotLock;
        addition.m_methods.xUnlock = DoNotLock;
        addition.m_methods.xCheckReservedLock = FindNoLock;
    } else if (addition.m_methods.iVersion >= 2 && addition.m_methods.xShmLock != nullptr) {
        addition.m_methods.xShmLock = LockAndMark;
    }
    file->pMethods = &addition.m_methods;
    return status;
}

// Another copy of this library in the process has names of its own.
template <std::size_t kWhich>
int Register() noexcept {
    sqlite3_vfs& vfs = s_vfs[kWhich];
    std::snprintf(s_names[kWhich], sizeof s_names[kWhich], "w64qxcore6-%p",
                  static_cast<void*>(&vfs));
    vfs = *s_system;
    vfs.pNext = nullptr;
    vfs.zName = s_names[kWhich];
    vfs.szOsFile = static_cast<int>(RoundUp(static_cast<std::size_t>(s_system->szOsFile)) +
                                    sizeof(FileAddition));
    vfs.xSleep = DoNotSleep;
    vfs.xOpen = Open<kWhich>;
    const int status = sqlite::vfs_register(&vfs, 0);
    if (status != SQLITE_OK) {
        vfs.zName = nullptr;
    }
    return status;
}

int RegisterAll() noexcept {
    s_system = sqlite::vfs_find("unix");
    if (s_system == nullptr) {
        return SQLITE_ERROR;
    }
    const int status = Register<0>();
    return status == SQLITE_OK ? Register<1>() : status;
}

bool AreRegistered() noexcept {
    return s_vfs[0].zName != nullptr && s_vfs[1].zName != nullptr;
}

}  // namespace

const char* StoreVfsName(StoreVfs which) {
    if (!sqlite::Bind()) {
        throw StoreFailure{kErrorModuleNotFound, false};
    }
    EnterCriticalSection(&s_lock);
    const int status = AreRegistered() ? SQLITE_OK : RegisterAll();
    LeaveCriticalSection(&s_lock);
    CheckStatus(status, nullptr);
    return s_names[static_cast<std::size_t>(which)];
}

void MarkWrites(sqlite3* database, StoreWord* word) noexcept {
    sqlite3_file* file = nullptr;
    sqlite::file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file != nullptr && file->pMethods != nullptr) {
        AdditionOf(file).m_word = word;
    }
}

void ForgetStoreVfs() noexcept {
    for (sqlite3_vfs& vfs : s_vfs) {
        if (vfs.zName != nullptr) {
            sqlite::vfs_unregister(&vfs);
            vfs.zName = nullptr;
        }
    }
}

}  // namespace platform

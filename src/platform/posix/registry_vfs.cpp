#include "registry_vfs.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <new>

#include "platform/errors.h"
#include "platform/sync.h"
#include "registry_failure.h"

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
    WriteMarks* m_marks;
    sqlite3_io_methods m_methods;
};

// What stands behind the system's part of an open log. A frame is a header and a page, which SQLite
// writes one right behind the other: the header of a frame at the log's end waits for its page.
struct LogAddition {
    static constexpr int kHeader = 24;
    static constexpr int kMostPage = 4096;

    const sqlite3_io_methods* m_system;
    sqlite3_int64 m_end;  // behind what was written last
    bool m_hasHeader;
    char m_frame[kHeader + kMostPage];
    sqlite3_io_methods m_methods;
};

constexpr std::size_t RoundUp(std::size_t size) noexcept {
    constexpr std::size_t kUnit = alignof(std::max_align_t);
    return (size + kUnit - 1) / kUnit * kUnit;
}

template <typename Addition = FileAddition>
Addition& AdditionOf(sqlite3_file* file) noexcept {
    auto* const start = reinterpret_cast<std::byte*>(file);
    return *reinterpret_cast<Addition*>(start +
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
    if (first != kWriteLock || addition.m_marks == nullptr) {
        return change(how);
    }
    if (how == (SQLITE_SHM_UNLOCK | SQLITE_SHM_EXCLUSIVE)) {
        addition.m_marks->End();
        return change(how);
    }
    const int status = change(how);
    if (status == SQLITE_OK && how == (SQLITE_SHM_LOCK | SQLITE_SHM_EXCLUSIVE) &&
        !addition.m_marks->Begin()) {
        change(SQLITE_SHM_UNLOCK | SQLITE_SHM_EXCLUSIVE);
        return SQLITE_BUSY;
    }
    return status;
}

int WriteHeader(sqlite3_file* file, LogAddition& log) {
    if (!log.m_hasHeader) {
        return SQLITE_OK;
    }
    log.m_hasHeader = false;
    return log.m_system->xWrite(file, log.m_frame, LogAddition::kHeader, log.m_end);
}

int WriteFrame(sqlite3_file* file, LogAddition& log, const void* page, int size) {
    log.m_hasHeader = false;
    std::memcpy(log.m_frame + LogAddition::kHeader, page, static_cast<std::size_t>(size));
    return log.m_system->xWrite(file, log.m_frame, LogAddition::kHeader + size, log.m_end);
}

int WriteLog(sqlite3_file* file, const void* data, int size, sqlite3_int64 at) {
    auto& log = AdditionOf<LogAddition>(file);
    if (size == LogAddition::kHeader && at == log.m_end && !log.m_hasHeader) {
        std::memcpy(log.m_frame, data, LogAddition::kHeader);
        log.m_hasHeader = true;
        return SQLITE_OK;
    }
    const bool isPage = at == log.m_end + LogAddition::kHeader && size <= LogAddition::kMostPage;
    int status;
    if (log.m_hasHeader && isPage) {
        status = WriteFrame(file, log, data, size);
    } else {
        status = WriteHeader(file, log);
        status = status == SQLITE_OK ? log.m_system->xWrite(file, data, size, at) : status;
    }
    log.m_end = at + size;
    return status;
}

// Whatever else is done with a log finds it written, but for its end: a header alone is no frame.
template <auto kMethod, typename... Arguments>
int OnWrittenLog(sqlite3_file* file, Arguments... arguments) {
    auto& log = AdditionOf<LogAddition>(file);
    const int status = WriteHeader(file, log);
    return status == SQLITE_OK ? (log.m_system->*kMethod)(file, arguments...) : status;
}

void AddToLog(sqlite3_file* file) noexcept {
    LogAddition& log = *::new (&AdditionOf<LogAddition>(file))
                           LogAddition{file->pMethods, 0, false, {}, *file->pMethods};
    log.m_methods.xWrite = WriteLog;
    log.m_methods.xRead = OnWrittenLog<&sqlite3_io_methods::xRead>;
    log.m_methods.xSync = OnWrittenLog<&sqlite3_io_methods::xSync>;
    log.m_methods.xTruncate = OnWrittenLog<&sqlite3_io_methods::xTruncate>;
    log.m_methods.xFileSize = OnWrittenLog<&sqlite3_io_methods::xFileSize>;
    file->pMethods = &log.m_methods;
}

template <std::size_t kWhich>
int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* opened) {
    auto& vfs = const_cast<sqlite3_vfs&>(*s_system);
    const int status = vfs.xOpen(&vfs, name, file, flags, opened);
    if (status == SQLITE_OK && (flags & SQLITE_OPEN_WAL) != 0) {
        AddToLog(file);
    }
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
                                    std::max(sizeof(FileAddition), sizeof(LogAddition)));
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

void MarkWrites(sqlite3* database, WriteMarks* marks) noexcept {
    sqlite3_file* file = nullptr;
    sqlite::file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (file != nullptr && file->pMethods != nullptr) {
        AdditionOf(file).m_marks = marks;
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

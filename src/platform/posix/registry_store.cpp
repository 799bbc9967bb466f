#include "registry_store.h"

#include <sys/stat.h>
#include <time.h>

#include <memory>

#include "registry_lifetime.h"
#include "registry_schema.h"

namespace platform {
namespace {

constexpr i64 kPatienceMilliseconds = 60'000;

// In the order of Statement.
constexpr std::array<const char*, kStatementCount> kTexts{
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
    "SELECT id FROM keys WHERE path=?1",
    "SELECT path FROM keys WHERE id=?1",
    "INSERT INTO keys(parent, folded, name, path) VALUES(?1, ?2, ?3, ?4)",
    "SELECT 1 FROM keys WHERE parent=?1 LIMIT 1",
    "SELECT folded, name FROM keys WHERE parent=?1 AND folded>?2 ORDER BY folded LIMIT 1",
    "DELETE FROM keys WHERE id=?1",
    "DELETE FROM vals WHERE key=?1",
    "SELECT type, data FROM vals WHERE key=?1 AND folded=?2",
    // Nothing is written below a key that is gone.
    "INSERT INTO vals(key, folded, name, type, data)"
    " SELECT ?1, ?2, ?3, ?4, ?5 FROM keys WHERE id=?1"
    " ON CONFLICT(key, folded) DO UPDATE SET type=excluded.type, data=excluded.data",
    "SELECT id, name, type, data FROM vals WHERE key=?1 AND id>?2 ORDER BY id LIMIT 1",
    "DELETE FROM vals WHERE key=?1 AND folded=?2",
};

constinit RegistryStore s_stores[kStoreCount]{RegistryStore(StoreNumber::kUser),
                                              RegistryStore(StoreNumber::kMachine)};

// Written under the locks of all stores. Whoever finds it set under such a lock is the thread that
// forks, in a handler of the program's own.
constinit bool s_forkUnderWay = false;

i64 MonotonicMilliseconds() noexcept {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return i64{1000} * now.tv_sec + now.tv_nsec / 1'000'000;
}

// Longer with each wait, up to some milliseconds, and never the same for two processes.
void SleepWithJitter(u32 waits) noexcept {
    const u32 most = 50'000u << (waits < 6 ? waits : 6);
    u32 random = 0;
    ::sqlite3_randomness(sizeof random, &random);
    const timespec pause{.tv_sec = 0, .tv_nsec = most / 2 + random % (most / 2)};
    ::nanosleep(&pause, nullptr);
}

struct Closer {
    void operator()(sqlite3* database) const noexcept { ::sqlite3_close_v2(database); }
};
using Connection = std::unique_ptr<sqlite3, Closer>;

Connection OpenFile(const char* file) {
    sqlite3* database = nullptr;
    const int status = ::sqlite3_open_v2(
        file, &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE,
        nullptr);
    Connection connection(database);
    CheckStatus(status, database);
    ::sqlite3_extended_result_codes(database, 1);
    return connection;
}

// The side files stay when the last writer goes, and are as readable as the file itself: without
// them, users who may only read could not.
void Configure(sqlite3* database) {
    int persist = 1;
    ::sqlite3_file_control(database, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
    ::sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    CheckStatus(
        ::sqlite3_exec(database, "PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304",
                       nullptr, nullptr, nullptr),
        database);
}

void ThrowIf(bool failed, u32 error) {
    if (failed) {
        throw StoreFailure{error, false};
    }
}

void ThrowUnlessSuccess(u32 error) {
    ThrowIf(error != kErrorSuccess, error);
}

}  // namespace

bool Patience::Wait() noexcept {
    const i64 now = MonotonicMilliseconds();
    if (m_waitingSince == 0) {
        m_waitingSince = now;
    }
    if (now - m_waitingSince > kPatienceMilliseconds) {
        return false;
    }
    SleepWithJitter(m_waits++);
    return true;
}

const StoreLocation& RegistryStore::Location() {
    if (m_location == nullptr) {
        m_location = new StoreLocation(LocateStore(m_number));
    }
    return *m_location;
}

RegistryStore::FileIdentity RegistryStore::FileAtPlace() {
    struct stat status;
    return ::stat(Location().m_file.c_str(), &status) == 0
               ? FileIdentity{status.st_dev, status.st_ino}
               : FileIdentity{};
}

bool RegistryStore::IsTimeToLook(Purpose purpose) noexcept {
    timespec now;
    ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    if (purpose == Purpose::kRead && now.tv_sec == m_lastLook) {
        return false;
    }
    m_lastLook = now.tv_sec;
    return true;
}

bool RegistryStore::Connect(Purpose purpose) {
    // Before the file is opened: if it is replaced in between, the next look finds a difference.
    const FileIdentity file = FileAtPlace();
    Connection connection = OpenFile(Location().m_file.c_str());
    Configure(connection.get());
    StoreContent content = IdentifyStore(connection.get());
    if (content == StoreContent::kNothing) {
        if (purpose == Purpose::kRead) {
            return false;
        }
        FillStore(connection.get(), m_number);
        SetSideFileModes(Location());
        content = IdentifyStore(connection.get());
    }
    ThrowIf(content != StoreContent::kRegistry, kErrorBadDatabase);
    m_incarnation += file != m_connectedFile;
    m_connectedFile = file;
    m_database = connection.release();
    return true;
}

bool RegistryStore::Open(Purpose purpose) {
    ThrowIf(s_forkUnderWay, kErrorBusy);
    if (m_database != nullptr && IsTimeToLook(purpose) && FileAtPlace() != m_connectedFile) {
        Close(Closing::kForAWhile);
        ++m_incarnation;
    }
    if (m_database != nullptr) {
        return true;
    }
    StoreFile found;
    ThrowUnlessSuccess(ProbeStoreFile(Location(), &found));
    ThrowIf(found == StoreFile::kForeign, kErrorBadDatabase);
    return found == StoreFile::kPresent && Connect(Purpose::kRead);
}

bool RegistryStore::CanWrite() {
    if (!IsReadOnly()) {
        return true;
    }
    Close(Closing::kForAWhile);
    return Connect(Purpose::kRead) && !IsReadOnly();
}

void RegistryStore::OpenForWriting() {
    if (m_database == nullptr) {
        ThrowUnlessSuccess(MakeStoreFile(Location()));
        Connect(Purpose::kWrite);
    }
    ThrowIf(!CanWrite(), kErrorAccessDenied);
}

sqlite3_stmt* RegistryStore::Prepared(Statement which) {
    sqlite3_stmt*& statement = m_prepared[static_cast<std::size_t>(which)];
    if (statement == nullptr) {
        CheckStatus(::sqlite3_prepare_v3(m_database, kTexts[static_cast<std::size_t>(which)], -1,
                                         SQLITE_PREPARE_PERSISTENT, &statement, nullptr),
                    m_database);
    }
    return statement;
}

void RegistryStore::Close(Closing how) noexcept {
    for (sqlite3_stmt*& statement : m_prepared) {
        ::sqlite3_finalize(statement);
        statement = nullptr;
    }
    if (how == Closing::kForGood) {
        delete m_location;
        m_location = nullptr;
    } else if (m_database != nullptr) {
        // The log is not written back each time.
        ::sqlite3_db_config(m_database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    }
    ::sqlite3_close(m_database);
    m_database = nullptr;
}

RegistryStore& StoreOf(StoreNumber number) noexcept {
    return s_stores[static_cast<std::size_t>(number)];
}

void CloseRegistryStores() noexcept {
    for (RegistryStore& store : s_stores) {
        store.Close(RegistryStore::Closing::kForGood);
    }
}

void CloseRegistryStoresForFork() noexcept {
    const ErrnoKeeper keepErrno;
    for (RegistryStore& store : s_stores) {
        store.Enter();
        store.Close(RegistryStore::Closing::kForAWhile);
    }
    s_forkUnderWay = true;
}

void FreeRegistryStoresAfterFork() noexcept {
    s_forkUnderWay = false;
    for (RegistryStore& store : s_stores) {
        store.Leave();
    }
}

}  // namespace platform

#include "registry_connection.h"

#include <unistd.h>

#include <cstring>

#include "platform/errors.h"
#include "registry_failure.h"
#include "registry_vfs.h"

namespace platform {
namespace {

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
    "SELECT id, type, data FROM vals WHERE key=?1 AND folded=?2",
    // Nothing is written below a key that is gone.
    "INSERT INTO vals(key, folded, name, type, data)"
    " SELECT ?1, ?2, ?3, ?4, ?5 FROM keys WHERE id=?1"
    " ON CONFLICT(key, folded) DO UPDATE SET type=excluded.type, data=excluded.data",
    // A value that is there has its key.
    "UPDATE vals SET type=?4, data=?5 WHERE id=?3 AND key=?1 AND folded=?2",
    "SELECT id, name, type, data FROM vals WHERE key=?1 AND id>?2 ORDER BY id LIMIT 1",
    "DELETE FROM vals WHERE key=?1 AND folded=?2",
    "SELECT folded, name FROM keys WHERE parent=?1 ORDER BY folded",
    "SELECT id, folded, name, type, data FROM vals WHERE key=?1 AND id>0 ORDER BY id",
};

// The published layout of the index: the writers' lock, the first piece of its mapping, and where
// in that the size of a page and the number of the log's frames stand.
constexpr int kWriterLock = 0;
constexpr int kIndexPiece = 32 * 1024;
constexpr std::size_t kPageSizeOffset = 14;
constexpr std::size_t kFrameCountOffset = 16;
constexpr i64 kLogHeaderSize = 32;
constexpr i64 kFrameHeaderSize = 24;

constexpr StoreFailure kFilesChanged{kErrorBusy, true};

sqlite3_file* FileOf(sqlite3* database) noexcept {
    sqlite3_file* file = nullptr;
    sqlite::file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
    return file;
}

template <typename Number>
Number NumberAt(const volatile void* start, std::size_t offset) noexcept {
    return *reinterpret_cast<const volatile Number*>(static_cast<const volatile char*>(start) +
                                                     offset);
}

// Null if it cannot be had.
volatile void* MappedIndex(sqlite3* database) noexcept {
    sqlite3_file* const file = FileOf(database);
    volatile void* index = nullptr;
    const int status = file->pMethods->xShmMap(file, 0, kIndexPiece, 0, &index);
    return status == SQLITE_OK ? index : nullptr;
}

// What the index says that the log must hold.
i64 LogSizeBy(const volatile void* index) noexcept {
    const i64 frames = NumberAt<u32>(index, kFrameCountOffset);
    const i64 page = NumberAt<u16>(index, kPageSizeOffset);
    return frames == 0 ? 0
                       : kLogHeaderSize + frames * (kFrameHeaderSize + (page == 1 ? 65536 : page));
}

// The lock by which the writers of all processes that share an index take turns.
class WriterLock {
  public:
    explicit WriterLock(sqlite3_file* file) noexcept
        : m_file(file), m_held(Change(SQLITE_SHM_LOCK) == SQLITE_OK) {}
    ~WriterLock() {
        if (m_held) {
            Change(SQLITE_SHM_UNLOCK);
        }
    }
    WriterLock(const WriterLock&) = delete;
    WriterLock& operator=(const WriterLock&) = delete;

    bool IsHeld() const noexcept { return m_held; }

  private:
    int Change(int how) noexcept {
        return m_file->pMethods->xShmLock(m_file, kWriterLock, 1, how | SQLITE_SHM_EXCLUSIVE);
    }

    sqlite3_file* m_file;
    bool m_held;
};

std::string SnapshotAddress(const std::string& path) {
    std::string address = "file:";
    for (const char byte : path) {
        constexpr char kHexadecimal[] = "0123456789ABCDEF";
        if (byte == '%' || byte == '?' || byte == '#') {
            address += '%';
            address += kHexadecimal[byte >> 4];
            address += kHexadecimal[byte & 15];
        } else {
            address += byte;
        }
    }
    return address + "?immutable=1";
}

sqlite3* OpenFile(const std::string& name, int how, StoreVfs vfs = StoreVfs::kLocking) {
    sqlite3* database = nullptr;
    errno = 0;  // SQLite reports it, also where the system had no part in the failure
    const int status =
        sqlite::open_v2(name.c_str(), &database,
                        how | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_PRIVATECACHE, StoreVfsName(vfs));
    if (status != SQLITE_OK) {
        const StoreFailure failure = StoreFailureOf(status, database);
        sqlite::close(database);
        throw failure;
    }
    sqlite::extended_result_codes(database, 1);
    return database;
}

// In a directory that is not this user's, or on a file system that cannot be written.
bool CannotMakeSideFiles(int status) noexcept {
    return status == SQLITE_READONLY_DIRECTORY || (status & 0xFF) == SQLITE_CANTOPEN;
}

StoreFiles LookBeforeOpening(const StorePaths& paths) {
    LookAt(paths.m_journal);
    return LookAt(paths);
}

}  // namespace

EffectiveIds EffectiveIds::Now() noexcept {
    return {::geteuid(), ::getegid()};
}

// The files are looked at before they are opened: what is replaced in between shows in Settle.
StoreConnection::StoreConnection(const std::string& database, StoreVfs how)
    : m_how(how),
      m_owner(EffectiveIds::Now()),
      m_paths(PathsOf(database)),
      m_files(LookBeforeOpening(m_paths)) {
    const int access = TakesLocks() ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY;
    m_database.reset(OpenFile(m_paths.m_database, access, how));
    const int status = Configure();
    if (TakesLocks() && CannotMakeSideFiles(status) && m_files.m_log.m_size == 0) {
        OpenSnapshot();
    } else {
        CheckStatus(status, Database());
    }
}

StoreConnection::~StoreConnection() {
    for (sqlite3_stmt* const statement : m_prepared) {
        sqlite::finalize(statement);
    }
}

// The side files stay when the last writer goes, and are as readable as the file itself: without
// them, users who may only read could not. Nothing that a file brings along runs.
int StoreConnection::Configure() noexcept {
    sqlite3* const database = Database();
    int persist = 1;
    sqlite::file_control(database, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
    sqlite::db_config(database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite::db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite::db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite::db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite::db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    m_steps.Watch(database);
    sqlite::update_hook(database, NoteRow, this);
    if (!TakesLocks()) {
        // Then SQLite makes an index of the log of its own and leaves the common one alone.
        sqlite::exec(database, "PRAGMA locking_mode=EXCLUSIVE", nullptr, nullptr, nullptr);
    }
    return sqlite::exec(database,
                        "PRAGMA temp_store=MEMORY; PRAGMA cell_size_check=ON;"
                        "PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304;"
                        "SELECT 1 FROM sqlite_schema LIMIT 1",
                        nullptr, nullptr, nullptr);
}

void StoreConnection::OpenSnapshot() {
    m_database.reset();
    m_database.reset(
        OpenFile(SnapshotAddress(m_paths.m_database), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI));
    m_snapshot = true;
    CheckStatus(Configure(), Database());
}

void StoreConnection::Fill(StoreNumber number, mode_t sideFileMode) {
    FillStore(Database(), number);
    SetSideFileModes(m_paths, sideFileMode);
}

// A file that somebody copied may have lost the mode in which it keeps a log.
void StoreConnection::Settle() {
    const bool logged = TakesLocks() && !m_snapshot && UseLog(Database());
    if (logged) {
        m_log = FileWatch(m_paths.m_log);
        m_index = FileWatch(m_paths.m_index);
        m_index.IsWhole();  // takes its length
        m_names = DirectoryWatch(m_paths.m_directory);
        m_names.Restart();
    }
    const StoreFiles now = LookAt(m_paths);
    const auto stayed = [](const FileState& before, const FileState& after) {
        return !before.IsThere() || before.IsSameFile(after);
    };
    if (!now.m_database.IsSameFile(m_files.m_database) || !stayed(m_files.m_log, now.m_log) ||
        !stayed(m_files.m_index, now.m_index) ||
        (logged && !(now.m_log.IsThere() && now.m_index.IsThere()))) {
        throw kFilesChanged;
    }
    m_logged = logged;
    if (!m_snapshot) {
        m_files = now;
    }
}

sqlite3_stmt* StoreConnection::Prepared(Statement which) {
    sqlite3_stmt*& statement = m_prepared[static_cast<std::size_t>(which)];
    if (statement == nullptr) {
        CheckStatus(sqlite::prepare_v3(Database(), kTexts[static_cast<std::size_t>(which)], -1,
                                       SQLITE_PREPARE_PERSISTENT, &statement, nullptr),
                    Database());
    }
    m_steps.Restart();
    return statement;
}

bool StoreConnection::IsSafe() {
    if (m_snapshot) {
        return IsInPlace();
    }
    return !m_logged || m_index.IsWhole();
}

bool StoreConnection::IsWhole() {
    return m_logged ? m_index.IsWhole() && m_log.Holds(LogSizeByIndex()) : IsInPlace();
}

// The index first: by the look at the log, whoever writes has only made that longer.
bool StoreConnection::IsInPlace() {
    m_names.Restart();
    if (m_logged && !m_index.IsWhole()) {
        return false;
    }
    const i64 logSize = LogSizeByIndex();
    return Fits(LookAt(m_paths), logSize);
}

bool StoreConnection::Fits(const StoreFiles& now, i64 logSize) const noexcept {
    if (!now.m_database.IsSameFile(m_files.m_database) || !now.m_log.IsSameFile(m_files.m_log)) {
        return false;
    }
    if (m_snapshot) {
        return now.m_log.m_size == 0 && now.m_database == m_files.m_database;
    }
    return !m_logged || (now.m_index.IsSameFile(m_files.m_index) && now.m_log.m_size >= logSize);
}

// A log that the index knows more of than there is was cut, or was begun anew between the two
// looks. To be called while the index is whole.
i64 StoreConnection::LogSizeByIndex() const noexcept {
    const volatile void* const index = m_logged ? MappedIndex(Database()) : nullptr;
    return index != nullptr ? LogSizeBy(index) : 0;
}

IndexState StoreConnection::Index() const noexcept {
    IndexState state{};
    if (const volatile void* const index = m_logged ? MappedIndex(Database()) : nullptr) {
        for (std::size_t i = 0; i < state.m_words.size(); ++i) {
            state.m_words[i] = NumberAt<u32>(index, i * sizeof(u32));
        }
    }
    return state;
}

// The log first: whoever opened the new database with the old log and without its index would put
// the log's contents into it.
void StoreConnection::RemoveFilesOfMine(const StoreFiles& now) noexcept {
    const bool replaced = !now.m_database.IsSameFile(m_files.m_database);
    if (replaced && now.m_log.IsSameFile(m_files.m_log)) {
        ::unlink(m_paths.m_log.c_str());
    }
    if (now.m_index.IsSameFile(m_files.m_index)) {
        ::unlink(m_paths.m_index.c_str());
    }
}

// All who use the old files share their index, so its lock lets one of them at a time look whether
// the side files are still the old ones and remove them.
void StoreConnection::RemoveStaleFiles() {
    if (!m_logged) {
        return;
    }
    const WriterLock lock(FileOf(Database()));
    const bool isWhole = m_index.IsWhole();
    const i64 logSize = isWhole ? LogSizeByIndex() : 0;
    const StoreFiles before = LookAt(m_paths);
    if (isWhole && Fits(before, logSize)) {
        return;
    }
    if (lock.IsHeld()) {
        RemoveFilesOfMine(before);
    }
    const StoreFiles now = LookAt(m_paths);
    if (now.m_database.IsThere() && now.m_index.IsSameFile(m_files.m_index)) {
        throw kFilesChanged;
    }
}

void StoreConnection::WriteBack() noexcept {
    sqlite::db_config(Database(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 0, nullptr);
}

}  // namespace platform

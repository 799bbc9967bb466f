// A connection to a store's file, with its prepared statements: what it was opened on, for whom,
// and whether both still hold.
#ifndef QX_PLATFORM_POSIX_REGISTRY_CONNECTION_H
#define QX_PLATFORM_POSIX_REGISTRY_CONNECTION_H

#include <sys/types.h>

#include <array>
#include <memory>
#include <string>

#include "registry_files.h"
#include "registry_schema.h"
#include "registry_sqlite.h"
#include "registry_vfs.h"

namespace platform {

enum class Statement : u8 {
    kBegin,
    kCommit,
    kRollback,
    kFindKey,
    kKeyPath,
    kAddKey,
    kFirstChild,
    kNextChild,
    kDeleteKey,
    kDeleteKeyValues,
    kReadValue,
    kWriteValue,
    kOverwriteValue,
    kNextValue,
    kDeleteValue,
    kAllKeys,
    kAllValues,
};
inline constexpr std::size_t kStatementCount = 17;

// The rights with which a thread acts at present.
struct EffectiveIds {
    uid_t m_user;
    gid_t m_group;

    static EffectiveIds Now() noexcept;
    bool operator==(const EffectiveIds&) const = default;
};

// The head of the log's index, which no transaction leaves as it was.
struct IndexState {
    std::array<u32, 12> m_words;

    bool operator==(const IndexState&) const = default;
    u32 Changes() const noexcept { return m_words[2]; }
};

// Ends a statement that does not end. No statement on a store that is whole comes near the limit.
class StepLimit {
  public:
    void Watch(sqlite3* database) noexcept {
        sqlite::progress_handler(database, kStepsInALap, CountLap, this);
    }
    // To be called ahead of each statement.
    void Restart() noexcept { m_laps = 0; }

  private:
    static constexpr int kStepsInALap = 1'000'000;
    static constexpr int kMostLaps = 500;

    static int CountLap(void* self) noexcept {
        return ++static_cast<StepLimit*>(self)->m_laps > kMostLaps;
    }

    int m_laps = 0;
};

// Every member may throw StoreFailure or std::bad_alloc unless it is noexcept.
class StoreConnection {
  public:
    // Opens a file that exists. What is in it may still be nothing or not ours. One that takes no
    // locks reads what is in place, database and log: what it gives counts only if nobody wrote
    // meanwhile, and it is of no use any more once somebody has.
    explicit StoreConnection(const std::string& database, StoreVfs how = StoreVfs::kLocking);
    // Leaves the log for the next connection, unless WriteBack was called.
    ~StoreConnection();
    StoreConnection(const StoreConnection&) = delete;
    StoreConnection& operator=(const StoreConnection&) = delete;

    StoreContent Identify() { return IdentifyStore(Database()); }
    // Makes a registry of an empty file.
    void Fill(StoreNumber number, mode_t sideFileMode);

    // To be called once the content is known to be a registry: from here on the connection stands
    // for the files that it uses. Throws if they changed meanwhile.
    void Settle();

    sqlite3* Database() const noexcept { return m_database.get(); }
    // A statement, ready to be run.
    sqlite3_stmt* Prepared(Statement which);
    // The row that a statement wrote last.
    i64 WrittenRow() const noexcept { return m_writtenRow; }
    bool IsReadOnly() const noexcept { return sqlite::db_readonly(Database(), "main") == 1; }
    const FileState& File() const noexcept { return m_files.m_database; }
    const StorePaths& Paths() const noexcept { return m_paths; }
    const EffectiveIds& Owner() const noexcept { return m_owner; }

    // Without an index nothing tells of changes. To be asked for on a connection that is safe.
    bool HasIndex() const noexcept { return m_logged; }
    IndexState Index() const noexcept;

    // The connection was made with other rights than the thread has now.
    bool BelongsToOthers() const noexcept { return m_owner != EffectiveIds::Now(); }
    // Cheap, for every operation: what the process has mapped is there in its whole length. Without
    // that a look at the mapping would end the process.
    bool IsSafe();
    // Ahead of a write: the side files are whole, and none is removed.
    bool IsWhole();
    // False if the places are to be looked at.
    bool AreNamesUnchanged() const noexcept { return m_names.IsUnchanged(); }
    // Looks at all places: the files there are the ones in use, and whole.
    bool IsInPlace();
    // The database at least is still the one in use.
    bool IsToTheSameFile() { return LookAt(m_paths.m_database).IsSameFile(m_files.m_database); }

    // Removes those side files that must not meet what is at the database's place now. To be called
    // on a connection that is not in place; it can only be closed then. Throws if a file of the old
    // store is still beside a new one.
    void RemoveStaleFiles();

    // Has the log written back when the connection is closed.
    void WriteBack() noexcept;

    // A snapshot reads a file that nobody uses, without any side file. Somebody who begins to use
    // the file ends it.
    bool IsSnapshot() const noexcept { return m_snapshot; }
    bool TakesLocks() const noexcept { return m_how == StoreVfs::kLocking; }

  private:
    struct Closer {
        void operator()(sqlite3* database) const noexcept { sqlite::close_v2(database); }
    };

    int Configure() noexcept;
    void OpenSnapshot();
    static void NoteRow(void* self, int, const char*, const char*, sqlite3_int64 row) noexcept {
        static_cast<StoreConnection*>(self)->m_writtenRow = row;
    }
    i64 LogSizeByIndex() const noexcept;
    bool Fits(const StoreFiles& now, i64 logSize) const noexcept;
    void RemoveFilesOfMine(const StoreFiles& now) noexcept;

    StoreVfs m_how;
    EffectiveIds m_owner;
    StorePaths m_paths;
    StoreFiles m_files;
    StepLimit m_steps;
    std::unique_ptr<sqlite3, Closer> m_database;
    std::array<sqlite3_stmt*, kStatementCount> m_prepared{};
    DirectoryWatch m_names;
    FileWatch m_log;
    FileWatch m_index;
    i64 m_writtenRow = 0;
    bool m_logged = false;
    bool m_snapshot = false;
};

}  // namespace platform

#endif

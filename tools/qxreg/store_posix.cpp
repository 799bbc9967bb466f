// A store is a database file here, found and opened as the library does.
#include <sqlite3.h>
#include <time.h>

#include <memory>

#include "failure.h"
#include "files.h"
#include "platform.h"
#include "platform/errors.h"
#include "registry_connection.h"
#include "registry_failure.h"
#include "registry_location.h"
#include "registry_schema.h"
#include "registry_vfs.h"
#include "registry_word.h"

namespace {

using platform::CheckStatus;
using platform::StoreConnection;
using platform::StoreFailure;
using platform::StoreLocation;
using platform::StoreNumber;

struct Closer {
    void operator()(sqlite3* database) const noexcept { ::sqlite3_close_v2(database); }
};
using Database = std::unique_ptr<sqlite3, Closer>;

// Where a database's header says whether it keeps a log beside it: 1 for no, in both.
constexpr std::size_t kHeaderSize = 100;
constexpr std::size_t kLogBytes[] = {18, 19};

// Numbers of keys are never given twice. What was given since the backup was made, and while it is
// brought back, is skipped.
constexpr char kSkipNumbers[] =
    "UPDATE sqlite_sequence SET seq=max(seq, ?1)+1000000 WHERE name='keys'";

constexpr char kNoRegistry[] = "is no registry, or is damaged";

std::string Reason(const StoreFailure& failure) {
    switch (failure.m_number) {
        case platform::kErrorAccessDenied:
            return "access denied";
        case platform::kErrorBusy:
            return "others are in the way";
        case platform::kErrorDiskFull:
            return "the disk is full";
        case platform::kErrorBadDatabase:
            return kNoRegistry;
        default:
            return "native error " + std::to_string(failure.m_number);
    }
}

[[noreturn]] void Refuse(const std::filesystem::path& file, const std::string& why) {
    throw Failure(file.string() + ": " + why);
}

// Others hold their locks for moments only.
template <typename Step>
auto Persist(const std::filesystem::path& file, Step step) {
    constexpr int kMostAttempts = 1000;
    constexpr timespec kPause{0, 10'000'000};
    // The library's part calls it by addresses of its own.
    if (!platform::sqlite::Bind()) {
        Refuse(file, "SQLite is not installed");
    }
    for (int attempt = 1;; ++attempt) {
        try {
            return step();
        } catch (const StoreFailure& failure) {
            if (!failure.m_transient || attempt == kMostAttempts) {
                Refuse(file, Reason(failure));
            }
        }
        ::nanosleep(&kPause, nullptr);
    }
}

void Execute(sqlite3* database, const char* text) {
    CheckStatus(::sqlite3_exec(database, text, nullptr, nullptr, nullptr), database);
}

StoreNumber NumberOf(Store store) {
    return store == Store::kUser ? StoreNumber::kUser : StoreNumber::kMachine;
}

StoreLocation Locate(Store store) {
    try {
        return platform::LocateStore(NumberOf(store));
    } catch (const StoreFailure& failure) {
        throw Failure("the store's place: " + Reason(failure));
    }
}

// What is committed at one moment, whatever of it is still in the log; as a file without a log.
std::string Snapshot(sqlite3* database) {
    Execute(database, "BEGIN; SELECT 1 FROM sqlite_schema LIMIT 1");
    sqlite3_int64 size = 0;
    unsigned char* const bytes = ::sqlite3_serialize(database, "main", &size, 0);
    std::string copy(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size));
    ::sqlite3_free(bytes);
    Execute(database, "COMMIT");
    if (copy.size() < kHeaderSize) {
        throw StoreFailure{platform::kErrorBadDatabase, false};
    }
    for (const std::size_t place : kLogBytes) {
        copy[place] = 1;
    }
    return copy;
}

Database OpenCopy(const std::string& bytes) {
    sqlite3* opened = nullptr;
    CheckStatus(::sqlite3_open(":memory:", &opened), nullptr);
    Database database(opened);
    auto* const own = static_cast<unsigned char*>(::sqlite3_malloc64(bytes.size()));
    if (own == nullptr) {
        throw StoreFailure{platform::kErrorOutOfMemory, false};
    }
    std::copy(bytes.begin(), bytes.end(), own);
    const auto size = static_cast<sqlite3_int64>(bytes.size());
    CheckStatus(
        ::sqlite3_deserialize(opened, "main", own, size, size,
                              SQLITE_DESERIALIZE_FREEONCLOSE | SQLITE_DESERIALIZE_RESIZEABLE),
        opened);
    return database;
}

// The first column of the first row: 0 and empty if there is none.
template <typename Read>
auto Ask(sqlite3* database, const char* question, sqlite3_int64 number, Read read) {
    sqlite3_stmt* statement = nullptr;
    CheckStatus(::sqlite3_prepare_v2(database, question, -1, &statement, nullptr), database);
    const std::unique_ptr<sqlite3_stmt, decltype(&::sqlite3_finalize)> owner(statement,
                                                                             ::sqlite3_finalize);
    ::sqlite3_bind_int64(statement, 1, number);
    CheckStatus(::sqlite3_step(statement), database);
    return read(statement);
}

sqlite3_int64 AskNumber(sqlite3* database, const char* question, sqlite3_int64 number = 0) {
    return Ask(database, question, number,
               [](sqlite3_stmt* row) { return ::sqlite3_column_int64(row, 0); });
}

bool IsSound(sqlite3* database) {
    return platform::IdentifyStore(database) == platform::StoreContent::kRegistry &&
           Ask(database, "PRAGMA integrity_check(1)", 0, [](sqlite3_stmt* row) {
               const auto* const text =
                   reinterpret_cast<const char*>(::sqlite3_column_text(row, 0));
               return text != nullptr && std::string_view(text) == "ok";
           });
}

bool IsOf(Store store, sqlite3* database) {
    const auto tree = store == Store::kUser ? platform::kTreeUser : platform::kTreeConfig32;
    return AskNumber(database, "SELECT count(*) FROM keys WHERE id=?1", tree) == 1;
}

Database OpenBackup(Store store, const std::filesystem::path& file) {
    return Persist(file, [&] {
        sqlite3* opened = nullptr;
        const int status = ::sqlite3_open_v2(file.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
        const Database source(opened);
        CheckStatus(status, opened);
        Database copy = OpenCopy(Snapshot(opened));
        if (!IsSound(copy.get())) {
            Refuse(file, kNoRegistry);
        }
        if (!IsOf(store, copy.get())) {
            Refuse(file, store == Store::kUser ? "is a backup of the machine's store"
                                               : "is a backup of a user's store");
        }
        return copy;
    });
}

// A connection as the library has them, so that the log stays as it keeps it.
std::unique_ptr<StoreConnection> Open(Store store, const StoreLocation& location) {
    auto connection = std::make_unique<StoreConnection>(location.m_file);
    switch (connection->Identify()) {
        case platform::StoreContent::kNothing:
            connection->Fill(NumberOf(store), location.m_fileMode);
            break;
        case platform::StoreContent::kForeign:
            throw StoreFailure{platform::kErrorBadDatabase, false};
        case platform::StoreContent::kRegistry:
            break;
    }
    connection->Settle();
    return connection;
}

void SkipNumbers(sqlite3* live, sqlite3* copy) {
    AskNumber(copy, kSkipNumbers,
              AskNumber(live, "SELECT seq FROM sqlite_sequence WHERE name='keys'"));
}

// One transaction for all who use the store.
void Replace(sqlite3* live, sqlite3* copy) {
    sqlite3_backup* const backup = ::sqlite3_backup_init(live, "main", copy, "main");
    if (backup != nullptr) {
        ::sqlite3_backup_step(backup, -1);
        ::sqlite3_backup_finish(backup);
    }
    CheckStatus(::sqlite3_extended_errcode(live), live);
}

}  // namespace

void BackUpStore(Store store, const std::filesystem::path& file) {
    const StoreLocation location = Locate(store);
    platform::StoreFile found;
    if (platform::ProbeStoreFile(location, &found) != 0 || found != platform::StoreFile::kPresent) {
        Refuse(location.m_file, "there is no store yet");
    }
    WriteFile(file,
              Persist(location.m_file, [&] { return Snapshot(Open(store, location)->Database()); }),
              true);
}

void RestoreStore(Store store, const std::filesystem::path& file) {
    const Database copy = OpenBackup(store, file);
    const StoreLocation location = Locate(store);
    if (const auto error = platform::MakeStoreFile(location)) {
        Refuse(location.m_file, Reason({error, false}));
    }
    platform::StoreWord word;  // all who use the store learn of it at once
    Persist(location.m_file, [&] {
        const auto live = Open(store, location);
        word.Follow(live->Paths().m_database.c_str(), live->File().m_inode);
        platform::MarkWrites(live->Database(), &word);
        SkipNumbers(live->Database(), copy.get());
        Replace(live->Database(), copy.get());
    });
}

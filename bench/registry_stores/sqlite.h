// SQLite: statements by hand on a file of the same tables, in the same mode.
#ifndef QX_BENCH_REGISTRY_STORES_SQLITE_H
#define QX_BENCH_REGISTRY_STORES_SQLITE_H

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <string>
#include <string_view>

#include "values.h"

// A connection with the registry's settings.
class Connection {
  public:
    explicit Connection(const std::string& file) {
        ::sqlite3_open_v2(file.c_str(), &m_database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                          nullptr);
        int persist = 1;
        ::sqlite3_file_control(m_database, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
        ::sqlite3_db_config(m_database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
        Execute("PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304");
        ::sqlite3_busy_timeout(m_database, 5000);
    }
    ~Connection() { ::sqlite3_close_v2(m_database); }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    void Execute(const char* text) { ::sqlite3_exec(m_database, text, nullptr, nullptr, nullptr); }
    sqlite3* Get() const { return m_database; }

  private:
    sqlite3* m_database = nullptr;
};

class Statement {
  public:
    Statement(const Connection& connection, const char* text) {
        ::sqlite3_prepare_v3(connection.Get(), text, -1, SQLITE_PREPARE_PERSISTENT, &m_statement,
                             nullptr);
    }
    ~Statement() { ::sqlite3_finalize(m_statement); }
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    Statement& Bind(int parameter, std::string_view bytes) {
        ::sqlite3_bind_blob(m_statement, parameter, bytes.data(), static_cast<int>(bytes.size()),
                            SQLITE_STATIC);
        return *this;
    }
    bool HasRow() { return ::sqlite3_step(m_statement) == SQLITE_ROW; }
    // Copies the bytes of a column.
    template <typename Target>
    void Copy(int column, Target* target) {
        const auto size = static_cast<std::size_t>(::sqlite3_column_bytes(m_statement, column));
        std::memcpy(target, ::sqlite3_column_blob(m_statement, column),
                    std::min(size, sizeof *target));
    }
    void Reset() { ::sqlite3_reset(m_statement); }
    // For a statement without rows.
    bool Run() {
        const bool done = ::sqlite3_step(m_statement) == SQLITE_DONE;
        Reset();
        return done;
    }

  private:
    sqlite3_stmt* m_statement = nullptr;
};

class Sqlite {
  public:
    static constexpr char kName[] = "SQLite by hand";
    static constexpr Offers kOffers = Offers::kSeeingOthersWrite;
    struct Place {
        std::string path;
        std::string name;
    };

    static void Fill(const std::string& directory, int values) {
        Connection connection(FileIn(directory));
        connection.Execute(
            "PRAGMA journal_mode=WAL;"
            "CREATE TABLE keys(id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER,"
            " folded BLOB NOT NULL, name BLOB NOT NULL, path BLOB NOT NULL UNIQUE);"
            "CREATE UNIQUE INDEX keys_of_key ON keys(parent, folded);"
            "CREATE TABLE vals(id INTEGER PRIMARY KEY, key INTEGER NOT NULL, folded BLOB NOT NULL,"
            " name BLOB NOT NULL, type INTEGER NOT NULL, data BLOB NOT NULL, UNIQUE(key, folded));"
            "CREATE INDEX vals_of_key ON vals(key); BEGIN");
        Statement addKey(connection, "INSERT INTO keys(folded, name, path) VALUES(?1, ?1, ?1)");
        for (int group = 0; group < GroupsOf(values); ++group) {
            const std::string path = KeyOf(group);
            addKey.Bind(1, path).Run();
        }
        Statement insert(connection,
                         "INSERT INTO vals(key, folded, name, type, data)"
                         " SELECT id, ?2, ?2, 3, ?3 FROM keys WHERE path=?1");
        for (int number = 0; number < values; ++number) {
            const Place place = PlaceOf(number);
            insert.Bind(1, place.path).Bind(2, place.name).Bind(3, BytesOf(kData)).Run();
        }
        connection.Execute("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
    }

    explicit Sqlite(const std::string& directory) : m_connection(FileIn(directory)) {}

    static Place PlaceOf(int number) { return {KeyOf(GroupOf(number)), Stored(NameOf(number))}; }
    static std::string KeyOf(int group) { return Stored(u"USER\\" + PathOf(group)); }

    bool Get(const Place& place, Data* data) {
        const bool found = m_select.Bind(1, place.path).Bind(2, place.name).HasRow();
        if (found) {
            m_select.Copy(1, data);
        }
        m_select.Reset();
        return found;
    }

    bool Set(const Place& place, const Data& data) {
        m_upsert.Bind(1, place.path).Bind(2, place.name).Bind(3, BytesOf(data));
        return m_begin.Run() && m_upsert.Run() && m_commit.Run();
    }

    int Enumerate(const std::string& key) {
        int count = 0;
        char16_t name[32];
        Data data;
        for (m_all.Bind(1, key); m_all.HasRow(); ++count) {
            m_all.Copy(0, &name);
            m_all.Copy(2, &data);
            benchmark::DoNotOptimize(name);
            benchmark::DoNotOptimize(data);
        }
        m_all.Reset();
        return count;
    }

    bool OpenAndClose(const std::string& key) {
        const bool found = m_key.Bind(1, key).HasRow();
        m_key.Reset();
        return found;
    }

  private:
    static std::string FileIn(const std::string& directory) {
        const std::string file = directory + "/by_hand.db";
        std::ofstream(file, std::ios::app);
        return file;
    }

    Connection m_connection;
    Statement m_begin{m_connection, "BEGIN IMMEDIATE"};
    Statement m_commit{m_connection, "COMMIT"};
    Statement m_key{m_connection, "SELECT id FROM keys WHERE path=?1"};
    Statement m_select{m_connection,
                       "SELECT vals.type, vals.data FROM keys JOIN vals ON vals.key = keys.id"
                       " WHERE keys.path=?1 AND vals.folded=?2"};
    Statement m_upsert{m_connection,
                       "INSERT INTO vals(key, folded, name, type, data)"
                       " SELECT id, ?2, ?2, 3, ?3 FROM keys WHERE path=?1"
                       " ON CONFLICT(key, folded) DO UPDATE SET type=excluded.type,"
                       " data=excluded.data"};
    Statement m_all{m_connection,
                    "SELECT vals.name, vals.type, vals.data FROM keys"
                    " JOIN vals ON vals.key = keys.id WHERE keys.path=?1 ORDER BY vals.id"};
};

#endif

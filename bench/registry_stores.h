// The registry and what a user would take instead, all with the same operations on the same values:
//
//   static void Fill(directory, values)  makes the store's files; it and the other stores' in the
//                                        directory may be filled in any order
//   Store(directory)                     opens what Fill made
//   Place PlaceOf(number)                how the store names a value, made before anything is timed
//   bool Get(place, data)                false for a value that is absent
//   bool Set(place, data)                one transaction
//   int Enumerate(group)                 copies the name and the data of each value; how many
//   bool OpenAndClose(group)             whether the key is there
#ifndef QX_BENCH_REGISTRY_STORES_H
#define QX_BENCH_REGISTRY_STORES_H

#include <benchmark/benchmark.h>
#include <qxcore/registry.h>
#include <qxcore/result.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#ifdef QX_BENCH_LMDB
#include <lmdb.h>
#endif
#ifdef QX_BENCH_GLIB
#include <glib.h>
#endif

constexpr int kGroupSize = 1000;  // values of a key

using Data = std::array<char16_t, 16>;

constexpr Data kData = {u"a text of units"};

inline std::u16string Numbered(const char* format, int number) {
    char text[32];
    const int length = std::snprintf(text, sizeof text, format, number);
    return {text, text + length};
}

inline std::u16string PathOf(int group) {
    return u"Software\\Example\\" + Numbered("Group %05d", group);
}

// Values from a million on are in no store.
constexpr int kAbsent = 1'000'000;

inline std::u16string NameOf(int number) {
    return Numbered(number < kAbsent ? "Value %05d" : "Other %05d", number % kGroupSize);
}

inline int GroupOf(int number) {
    return number % kAbsent / kGroupSize;
}

inline int GroupsOf(int values) {
    return (values + kGroupSize - 1) / kGroupSize;
}

// The registry's stored form: units in upper case, the high byte first.
inline std::string Stored(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        const bool isLower = unit >= u'a' && unit <= u'z';
        bytes += static_cast<char>(unit >> 8);
        bytes += static_cast<char>((unit & 0xFF) - (isLower ? 'a' - 'A' : 0));
    }
    return bytes;
}

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

inline std::string_view BytesOf(const Data& data) {
    return {reinterpret_cast<const char*>(data.data()), sizeof data};
}

class Library {
  public:
    static constexpr char kName[] = "Library";
    static constexpr bool kSeesOthers = true;
    struct Place {
        std::u16string path;
        std::u16string name;
    };

    // The library makes the store and the keys; the values come in one transaction behind it.
    static void Fill(const std::string& directory, int values) {
        {
            Library library(directory);
            for (int group = 0; group < GroupsOf(values); ++group) {
                library.Set(library.PlaceOf(group * kGroupSize), kData);
            }
        }
        Connection connection(directory + "/user.db");
        Statement insert(connection,
                         "INSERT OR IGNORE INTO vals(key, folded, name, type, data)"
                         " SELECT id, ?2, ?3, 3, ?4 FROM keys WHERE path=?1");
        connection.Execute("BEGIN");
        for (int number = 0; number < values; ++number) {
            const std::string path = Stored(u"USER\\" + PathOf(GroupOf(number)));
            const std::string name = Stored(NameOf(number));
            insert.Bind(1, path).Bind(2, name).Bind(3, name).Bind(4, BytesOf(kData)).Run();
        }
        connection.Execute("COMMIT; PRAGMA wal_checkpoint(TRUNCATE)");
    }

    // The library looks for its directory once in a process.
    explicit Library(const std::string& directory) {
        ::setenv("W64QXCORE6_REGISTRY", directory.c_str(), 1);
    }

    static Place PlaceOf(int number) { return {PathOf(GroupOf(number)), NameOf(number)}; }
    static std::u16string KeyOf(int group) { return PathOf(group); }

    bool Get(const Place& place, Data* data) {
        uint32_t type;
        uint32_t length = sizeof *data;
        return QXRegistryGetValue(QX_HKEY_USER, place.path.c_str(), place.name.c_str(), &type,
                                  data->data(), &length) == QX_S_OK;
    }

    bool Set(const Place& place, const Data& data) {
        return QXRegistrySetValue(QX_HKEY_USER, place.path.c_str(), place.name.c_str(),
                                  QX_REG_BINARY, data.data(), sizeof data) == QX_S_OK;
    }

    int Enumerate(const std::u16string& key) {
        QXHandle values;
        QXRegistryOpenValueEnum(QX_HKEY_USER, key.c_str(), &values);
        int count = 0;
        char16_t name[32];
        Data data;
        for (uint32_t nameLength = 32, type, length = sizeof data;
             QXRegistryEnumNextValue(values, name, &nameLength, &type, data.data(), &length) ==
             QX_S_OK;
             nameLength = 32, length = sizeof data) {
            ++count;
        }
        QXRegistryCloseEnum(values);
        return count;
    }

    bool OpenAndClose(const std::u16string& key) {
        QXHandle values;
        return QXRegistryOpenValueEnum(QX_HKEY_USER, key.c_str(), &values) == QX_S_OK &&
               QXRegistryCloseEnum(values) == QX_S_OK;
    }
};

// Statements by hand on a file of the same tables, in the same mode.
class Sqlite {
  public:
    static constexpr char kName[] = "SQLite by hand";
    static constexpr bool kSeesOthers = true;
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

#ifdef QX_BENCH_LMDB

// A transaction that is renewed for each get proves each answer current, as the registry does; a
// standing one answers from the state that it began with. A commit survives the process's death and
// not a loss of power, as the registry's.
enum class Reading { kRenewed, kStanding };

template <Reading reading>
class Lmdb {
  public:
    static constexpr const char* kName =
        reading == Reading::kRenewed ? "LMDB, transaction renewed" : "LMDB, standing transaction";
    static constexpr bool kSeesOthers = reading == Reading::kRenewed;
    using Place = std::string;  // the path, a zero unit, the name; an empty one is the key's own

    static void Fill(const std::string& directory, int values) {
        Lmdb store(directory);
        store.EndReading();
        MDB_txn* writing = store.Begin(0);
        for (int group = 0; group < GroupsOf(values); ++group) {
            store.Put(writing, KeyOf(group), {});
        }
        for (int number = 0; number < values; ++number) {
            store.Put(writing, PlaceOf(number), BytesOf(kData));
        }
        ::mdb_txn_commit(writing);
    }

    explicit Lmdb(const std::string& directory) {
        ::mdb_env_create(&m_environment);
        ::mdb_env_set_mapsize(m_environment, std::size_t{1} << 30);
        const std::string file = directory + "/lmdb";
        ::mdb_env_open(m_environment, file.c_str(), MDB_NOSUBDIR | MDB_NOSYNC, 0600);
        MDB_txn* opening = Begin(0);
        ::mdb_dbi_open(opening, nullptr, 0, &m_database);
        ::mdb_txn_commit(opening);
        m_reading = Begin(MDB_RDONLY);
        ::mdb_cursor_open(m_reading, m_database, &m_cursor);
    }
    ~Lmdb() {
        EndReading();
        ::mdb_env_close(m_environment);
    }
    Lmdb(const Lmdb&) = delete;
    Lmdb& operator=(const Lmdb&) = delete;

    static Place PlaceOf(int number) { return KeyOf(GroupOf(number)) + Stored(NameOf(number)); }
    static Place KeyOf(int group) { return Stored(PathOf(group)) + std::string(2, '\0'); }

    bool Get(const Place& place, Data* data) {
        Renew();
        MDB_val value;
        const bool found = Find(place, &value);
        if (found) {
            std::memcpy(data, value.mv_data, std::min(value.mv_size, sizeof *data));
        }
        return found;
    }

    bool Set(const Place& place, const Data& data) {
        MDB_txn* writing = Begin(0);
        Put(writing, place, BytesOf(data));
        return ::mdb_txn_commit(writing) == 0;
    }

    int Enumerate(const Place& key) {
        Renew();
        ::mdb_cursor_renew(m_reading, m_cursor);
        MDB_val name = ValueOf(key);
        MDB_val value;
        ::mdb_cursor_get(m_cursor, &name, &value, MDB_SET_KEY);
        int count = 0;
        char copied[64];
        Data data;
        while (::mdb_cursor_get(m_cursor, &name, &value, MDB_NEXT) == 0 && IsBelow(name, key)) {
            ++count;
            std::memcpy(copied, static_cast<char*>(name.mv_data) + key.size(),
                        std::min(name.mv_size - key.size(), sizeof copied));
            std::memcpy(&data, value.mv_data, std::min(value.mv_size, sizeof data));
            benchmark::DoNotOptimize(copied);
            benchmark::DoNotOptimize(data);
        }
        return count;
    }

    bool OpenAndClose(const Place& key) {
        Renew();
        MDB_val value;
        return Find(key, &value);
    }

  private:
    static MDB_val ValueOf(std::string_view bytes) {
        return {bytes.size(), const_cast<char*>(bytes.data())};
    }
    static bool IsBelow(const MDB_val& name, const Place& key) {
        return name.mv_size > key.size() && std::memcmp(name.mv_data, key.data(), key.size()) == 0;
    }

    MDB_txn* Begin(unsigned flags) {
        MDB_txn* transaction = nullptr;
        ::mdb_txn_begin(m_environment, nullptr, flags, &transaction);
        return transaction;
    }
    void Renew() {
        if constexpr (reading == Reading::kRenewed) {
            ::mdb_txn_reset(m_reading);
            ::mdb_txn_renew(m_reading);
        }
    }
    void EndReading() {
        if (m_reading != nullptr) {
            ::mdb_cursor_close(m_cursor);
            ::mdb_txn_abort(m_reading);
            m_reading = nullptr;
        }
    }
    bool Find(const Place& place, MDB_val* value) {
        MDB_val name = ValueOf(place);
        return ::mdb_get(m_reading, m_database, &name, value) == 0;
    }
    void Put(MDB_txn* writing, const Place& place, std::string_view bytes) {
        MDB_val name = ValueOf(place);
        MDB_val value = ValueOf(bytes);
        ::mdb_put(writing, m_database, &name, &value, 0);
    }

    MDB_env* m_environment = nullptr;
    MDB_dbi m_database = 0;
    MDB_txn* m_reading = nullptr;
    MDB_cursor* m_cursor = nullptr;
};

#endif

#ifdef QX_BENCH_GLIB

// Text that is parsed whole when it is opened; nothing is written back.
class KeyFile {
  public:
    static constexpr char kName[] = "GLib key file in memory";
    static constexpr bool kSeesOthers = false;
    struct Place {
        std::string path;
        std::string name;
    };

    static void Fill(const std::string& directory, int values) {
        std::ofstream file(directory + "/key_file");
        for (int number = 0; number < values; ++number) {
            const Place place = PlaceOf(number);
            if (number % kGroupSize == 0) {
                file << '[' << place.path << "]\n";
            }
            file << place.name << "=" << Text(kData) << '\n';
        }
    }

    explicit KeyFile(const std::string& directory) : m_file(::g_key_file_new()) {
        ::g_key_file_load_from_file(m_file, (directory + "/key_file").c_str(), G_KEY_FILE_NONE,
                                    nullptr);
    }
    ~KeyFile() { ::g_key_file_free(m_file); }
    KeyFile(const KeyFile&) = delete;
    KeyFile& operator=(const KeyFile&) = delete;

    static Place PlaceOf(int number) { return {KeyOf(GroupOf(number)), Narrow(NameOf(number))}; }
    static std::string KeyOf(int group) { return Narrow(PathOf(group)); }

    bool Get(const Place& place, Data* data) {
        char* const text =
            ::g_key_file_get_value(m_file, place.path.c_str(), place.name.c_str(), nullptr);
        if (text == nullptr) {
            return false;
        }
        std::memcpy(data, text, std::min(std::strlen(text), sizeof *data));
        ::g_free(text);
        return true;
    }

    bool Set(const Place& place, const Data& data) {
        ::g_key_file_set_value(m_file, place.path.c_str(), place.name.c_str(), Text(data).c_str());
        return true;
    }

    int Enumerate(const std::string& key) {
        char** const names = ::g_key_file_get_keys(m_file, key.c_str(), nullptr, nullptr);
        int count = 0;
        for (char** name = names; *name != nullptr; ++name, ++count) {
            ::g_free(::g_key_file_get_value(m_file, key.c_str(), *name, nullptr));
        }
        ::g_strfreev(names);
        return count;
    }

    bool OpenAndClose(const std::string& key) {
        return ::g_key_file_has_group(m_file, key.c_str()) != 0;
    }

  private:
    static std::string Narrow(std::u16string_view text) { return {text.begin(), text.end()}; }
    // As many bytes as the data has.
    static std::string Text(const Data& data) {
        std::string text(sizeof data, '.');
        std::transform(data.begin(), data.end(), text.begin(),
                       [](char16_t unit) { return static_cast<char>(unit != 0 ? unit : u'.'); });
        return text;
    }

    GKeyFile* m_file;
};

#endif

#endif

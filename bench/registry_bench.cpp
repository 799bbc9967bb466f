// The registry beside statements by hand on the same file, with a connection of the same settings:
// a prepared select by path and name, and a transaction of one row.
#include <benchmark/benchmark.h>
#include <qxcore/registry.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

constexpr int kValues = 10'000;
constexpr char16_t kPath[] = u"Software\\Example\\Settings";
constexpr char16_t kFoldedPath[] = u"USER\\SOFTWARE\\EXAMPLE\\SETTINGS";
constexpr char16_t kText[] = u"a text of a usual length, some forty units";

std::u16string NameOf(int number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "VALUE %05d", number);
    return {digits, digits + 11};
}

std::string Stored(std::u16string_view text) {
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(unit >> 8);
        bytes += static_cast<char>(unit & 0xFF);
    }
    return bytes;
}

// A directory for the length of the program, filled through the library.
class Registry {
  public:
    Registry() {
        char name[] = "/tmp/registry_bench.XXXXXX";
        m_directory = ::mkdtemp(name);
        ::setenv("W64QXCORE6_REGISTRY", m_directory.c_str(), 1);
        for (int i = 0; i < kValues; ++i) {
            QXRegistrySetValue(QX_HKEY_USER, kPath, NameOf(i).c_str(), QX_REG_STRING, kText,
                               sizeof kText);
        }
    }
    ~Registry() { std::filesystem::remove_all(m_directory); }

    std::string File() const { return m_directory + "/user.db"; }

  private:
    std::string m_directory;
};

Registry& TheRegistry() {
    static Registry registry;
    return registry;
}

class Connection {
  public:
    Connection() {
        ::sqlite3_open_v2(TheRegistry().File().c_str(), &m_database,
                          SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
        int persist = 1;
        ::sqlite3_file_control(m_database, "main", SQLITE_FCNTL_PERSIST_WAL, &persist);
        ::sqlite3_exec(m_database, "PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304",
                       nullptr, nullptr, nullptr);
    }
    ~Connection() { ::sqlite3_close_v2(m_database); }

    sqlite3_stmt* Prepare(const char* text) {
        sqlite3_stmt* statement = nullptr;
        ::sqlite3_prepare_v3(m_database, text, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
        return statement;
    }

  private:
    sqlite3* m_database = nullptr;
};

void BindBlob(sqlite3_stmt* statement, int parameter, const std::string& bytes) {
    ::sqlite3_bind_blob(statement, parameter, bytes.data(), static_cast<int>(bytes.size()),
                        SQLITE_STATIC);
}

void Run(benchmark::State& state, sqlite3_stmt* statement, int expected) {
    if (::sqlite3_step(statement) != expected) {
        state.SkipWithError("the statement failed");
    }
}

void GetValue_Library(benchmark::State& state) {
    TheRegistry();
    int number = 0;
    for (auto _ : state) {
        const std::u16string name = NameOf(number = (number + 7919) % kValues);
        char16_t text[64];
        uint32_t type;
        uint32_t length = sizeof text;
        if (QXRegistryGetValue(QX_HKEY_USER, kPath, name.c_str(), &type, text, &length) != 0) {
            state.SkipWithError("the value is missing");
        }
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(GetValue_Library);

void GetValue_ByHand(benchmark::State& state) {
    Connection connection;
    sqlite3_stmt* const select = connection.Prepare(
        "SELECT vals.type, vals.data FROM keys JOIN vals ON vals.key = keys.id"
        " WHERE keys.path = ?1 AND vals.folded = ?2");
    const std::string path = Stored(kFoldedPath);
    int number = 0;
    for (auto _ : state) {
        const std::string name = Stored(NameOf(number = (number + 7919) % kValues));
        char text[128];
        BindBlob(select, 1, path);
        BindBlob(select, 2, name);
        Run(state, select, SQLITE_ROW);
        const std::string_view data(static_cast<const char*>(::sqlite3_column_blob(select, 1)),
                                    static_cast<std::size_t>(::sqlite3_column_bytes(select, 1)));
        data.copy(text, sizeof text);
        benchmark::DoNotOptimize(text);
        ::sqlite3_reset(select);
    }
    ::sqlite3_finalize(select);
}
BENCHMARK(GetValue_ByHand);

void SetValue_Library(benchmark::State& state) {
    TheRegistry();
    int number = 0;
    std::u16string text = kText;
    for (auto _ : state) {
        const std::u16string name = NameOf(number = (number + 7919) % kValues);
        ++text.front();  // a row that stays the same would not be written
        if (QXRegistrySetValue(QX_HKEY_USER, kPath, name.c_str(), QX_REG_STRING, text.data(),
                               sizeof kText) != 0) {
            state.SkipWithError("the value was not written");
        }
    }
}
BENCHMARK(SetValue_Library);

void SetValue_ByHand(benchmark::State& state) {
    Connection connection;
    sqlite3_stmt* const begin = connection.Prepare("BEGIN IMMEDIATE");
    sqlite3_stmt* const commit = connection.Prepare("COMMIT");
    sqlite3_stmt* const upsert = connection.Prepare(
        "INSERT INTO vals(key, folded, name, type, data)"
        " SELECT id, ?2, ?2, 1, ?3 FROM keys WHERE path = ?1"
        " ON CONFLICT(key, folded) DO UPDATE SET type=excluded.type, data=excluded.data");
    const std::string path = Stored(kFoldedPath);
    std::string text(reinterpret_cast<const char*>(kText), sizeof kText);
    int number = 0;
    for (auto _ : state) {
        const std::string name = Stored(NameOf(number = (number + 7919) % kValues));
        ++text.front();
        BindBlob(upsert, 1, path);
        BindBlob(upsert, 2, name);
        BindBlob(upsert, 3, text);
        for (sqlite3_stmt* const statement : {begin, upsert, commit}) {
            Run(state, statement, SQLITE_DONE);
            ::sqlite3_reset(statement);
        }
    }
    for (sqlite3_stmt* const statement : {begin, upsert, commit}) {
        ::sqlite3_finalize(statement);
    }
}
BENCHMARK(SetValue_ByHand);

}  // namespace

// The ini file beside its lines read and converted by the C library, and a migration beside its
// rows written by hand, one transaction each, over a connection of the same settings.
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <qxcore/registry.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <clocale>
#include <cstdio>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <string>

#include "config/ini_file.h"

namespace {

constexpr int kSections = 1'000;
constexpr int kKeys = 20;
constexpr int kMovedSections = 500;  // 10,000 values

// The current directory for the length of the program, with a registry in it.
class Directory {
  public:
    Directory() {
        char name[] = "/tmp/ini_bench.XXXXXX";
        m_directory = ::mkdtemp(name);
        std::filesystem::current_path(m_directory);
        ::setenv("W64QXCORE6_REGISTRY", m_directory.c_str(), 1);
        std::setlocale(LC_ALL, "C.UTF-8");
    }
    ~Directory() { std::filesystem::remove_all(m_directory); }

    void Write(const char* name, int sections, int round) const {
        std::ofstream file(name);
        for (int section = 0; section < sections; ++section) {
            file << "[" << SectionName(section) << "]\n";
            for (int key = 0; key < kKeys; ++key) {
                file << KeyName(key) << "=" << ValueText(round) << "\n";
            }
            file << "\n";
        }
    }

    static std::string SectionName(int section) {
        return "QX_HKEY_CONFIG\\SOFTWARE\\SECTION " + std::to_string(section + 100'000);
    }
    static std::string KeyName(int key) { return "SETTING" + std::to_string(key + 10); }
    static std::string ValueText(int round) {
        return "a usual value " + std::to_string(round + 100);
    }

  private:
    std::string m_directory;
};

const Directory& TheDirectory() {
    static const Directory directory;
    return directory;
}

// Memory is told as a multiple of the file's size.
void Load_Library(benchmark::State& state) {
    TheDirectory().Write("load.ini", kSections, 0);
    for (auto _ : state) {
        const IniFile file(u"load.ini");
        benchmark::DoNotOptimize(&file);
    }
    const std::size_t before = ::mallinfo2().uordblks;
    const IniFile file(u"load.ini");
    state.counters["memory"] = static_cast<double>(::mallinfo2().uordblks - before) /
                               static_cast<double>(std::filesystem::file_size("load.ini"));
}
BENCHMARK(Load_Library);

void Load_ByHand(benchmark::State& state) {
    TheDirectory().Write("load.ini", kSections, 0);
    for (auto _ : state) {
        std::FILE* const file = std::fopen("load.ini", "r");
        char line[511];
        while (std::fgets(line, sizeof line, file) != nullptr) {
            wchar_t wide[511];
            benchmark::DoNotOptimize(std::mbstowcs(wide, line, std::size(wide)));
        }
        std::fclose(file);
    }
}
BENCHMARK(Load_ByHand);

void Migrate_Library(benchmark::State& state) {
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        TheDirectory().Write("qxregistry.ini", kMovedSections, ++round);
        state.ResumeTiming();
        if (QXRegistryMigrate(QX_REGSTORE_INI, 0, QX_REGSTORE_NATIVE, 0) != 0) {
            state.SkipWithError("the migration failed");
        }
    }
}
BENCHMARK(Migrate_Library)->Unit(benchmark::kMillisecond);

// As the registry stores them: units, most significant byte first.
std::string Stored(const std::string& text) {
    std::string bytes;
    for (const char unit : text) {
        bytes += '\0';
        bytes += unit;
    }
    return bytes;
}

void BindBlob(sqlite3_stmt* statement, int parameter, const std::string& bytes) {
    ::sqlite3_bind_blob(statement, parameter, bytes.data(), static_cast<int>(bytes.size()),
                        SQLITE_TRANSIENT);
}

void Run(benchmark::State& state, sqlite3_stmt* statement) {
    if (::sqlite3_step(statement) != SQLITE_DONE) {
        state.SkipWithError("the statement failed");
    }
    ::sqlite3_reset(statement);
}

// As the registry stores it for the 32-bit view of the machine's configuration.
std::string KeyPath(int section) {
    const std::string name = TheDirectory().SectionName(section);
    return Stored("CONFIG-32" + name.substr(name.find('\\')));
}

void Migrate_ByHand(benchmark::State& state) {
    sqlite3* database = nullptr;
    TheDirectory().Write("qxregistry.ini", kMovedSections, 0);
    QXRegistryMigrate(QX_REGSTORE_INI, 0, QX_REGSTORE_NATIVE, 0);
    ::sqlite3_open_v2("machine.db", &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX,
                      nullptr);
    ::sqlite3_exec(database, "PRAGMA synchronous=NORMAL; PRAGMA journal_size_limit=4194304",
                   nullptr, nullptr, nullptr);
    const char* const texts[] = {
        "BEGIN IMMEDIATE",
        "INSERT INTO vals(key, folded, name, type, data)"
        " SELECT id, ?2, ?2, 1, ?3 FROM keys WHERE path = ?1"
        " ON CONFLICT(key, folded) DO UPDATE SET type=excluded.type, data=excluded.data",
        "COMMIT"};
    sqlite3_stmt* statements[3];
    for (int i = 0; i < 3; ++i) {
        ::sqlite3_prepare_v3(database, texts[i], -1, SQLITE_PREPARE_PERSISTENT, &statements[i],
                             nullptr);
    }
    int round = 0;
    int changed = 0;
    for (auto _ : state) {
        ++round;
        for (int section = 0; section < kMovedSections; ++section) {
            const std::string path = KeyPath(section);
            for (int key = 0; key < kKeys; ++key) {
                BindBlob(statements[1], 1, path);
                BindBlob(statements[1], 2, Stored(TheDirectory().KeyName(key)));
                BindBlob(statements[1], 3, Stored(TheDirectory().ValueText(round)));
                for (sqlite3_stmt* const statement : statements) {
                    Run(state, statement);
                }
            }
        }
        changed = ::sqlite3_changes(database);
    }
    if (changed == 0) {
        state.SkipWithError("no row was written");
    }
    for (sqlite3_stmt* const statement : statements) {
        ::sqlite3_finalize(statement);
    }
    ::sqlite3_close_v2(database);
}
BENCHMARK(Migrate_ByHand)->Unit(benchmark::kMillisecond);

}  // namespace

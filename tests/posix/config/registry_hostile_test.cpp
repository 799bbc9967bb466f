// Stores that somebody crafted, locks that somebody holds, rights that somebody gave up.
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <thread>

#include "config/registry_support.h"
#include "posix/config/database.h"
#include "posix/support/forked_child.h"

namespace {

namespace fs = std::filesystem;
using RegistryHostile = Registry;

constexpr uid_t kNobody = 65534;

// A process of another user that holds read locks on all of a file for as long as it lives.
class LockingStranger {
  public:
    explicit LockingStranger(const fs::path& file)
        : m_process([&] {
              const int descriptor =
                  ::setuid(kNobody) == 0 ? ::open(file.c_str(), O_RDONLY | O_CLOEXEC) : -1;
              struct flock all = {};
              all.l_type = F_RDLCK;
              *m_state = ::fcntl(descriptor, F_SETLK, &all) == 0 ? 1 : -1;
              for (;;) {
                  ::pause();
              }
              return 0;
          }) {
        while (*m_state == 0) {
            ::sched_yield();
        }
    }
    bool Holds() const { return *m_state == 1; }

  private:
    SharedWithChildren<std::atomic<int>> m_state;
    ForkedChild m_process;
};

// The patience with a lock is some seconds; a minute is far from it.
TEST_F(RegistryHostile, AStrangersLockHoldsUpNobodyForLongAndNoForkAtAll) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ::chmod(m_registry.Folder().c_str(), 0755);
    ASSERT_EQ(ForkedChild([] { return SetText(u"k", u"v", u"text", QX_HKEY_CONFIG); },
                          ChildEnd::kThroughExitHandlers)
                  .Wait(),
              0);
    const LockingStranger stranger(File("machine.db-shm"));
    ASSERT_TRUE(stranger.Holds());
    const auto start = std::chrono::steady_clock::now();
    std::atomic<bool> done{false};
    std::thread held([&] {
        EXPECT_EQ(SetText(u"k", u"v", u"other", QX_HKEY_CONFIG), QX_E_FAIL);
        done = true;
    });
    int forks = 0;
    while (!done) {
        ForkedChild([] { return 0; }).Wait();
        ++forks;
    }
    held.join();
    EXPECT_GT(forks, 5);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

// What a process that has nothing in memory reads, by name and by step.
int ReadsNumber(const char16_t* expected) {
    const bool isRight = Text(u"k", u"v", QX_HKEY_CONFIG) == expected &&
                         Exists(QX_HKEY_CONFIG, u"k", u"none") == QX_E_NOTFOUND &&
                         SubkeysOf(u"", QX_HKEY_CONFIG) == std::vector<std::u16string>{u"k"};
    return isRight ? 0 : 1;
}

// A reader that needs the index made anew, which the stranger's locks do not let anybody do.
TEST_F(RegistryHostile, AStrangersLockHoldsUpNoReader) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ::chmod(m_registry.Folder().c_str(), 0755);
    for (const bool inTheLog : {true, false}) {
        const char16_t* const text = inTheLog ? u"in the log" : u"written back";
        ASSERT_EQ(ForkedChild([&] { return SetText(u"k", u"v", text, QX_HKEY_CONFIG); }).Wait(), 0);
        if (!inTheLog) {
            WriteLogBack(File("machine.db"));
        }
        EXPECT_EQ(fs::file_size(File("machine.db-wal")) != 0, inTheLog);
        fs::resize_file(File("machine.db-shm"), 0);
        fs::resize_file(File("machine.db-shm"), 32768);
        const LockingStranger onIndex(File("machine.db-shm"));
        const LockingStranger onDatabase(File("machine.db"));
        ASSERT_TRUE(onIndex.Holds() && onDatabase.Holds());
        const auto start = std::chrono::steady_clock::now();
        for (int round = 0; round < 5; ++round) {
            EXPECT_EQ(ForkedChild([&] { return ReadsNumber(text); }).Wait(), 0);
            EXPECT_EQ(
                ForkedChild([&] { return ::setuid(kNobody) == 0 ? ReadsNumber(text) : 2; }).Wait(),
                0);
        }
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
    }
}

TEST_F(RegistryHostile, WhoGivesUpHisRightsGivesUpTheStore) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ::chmod(m_registry.Folder().c_str(), 0755);
    ASSERT_EQ(SetText(u"k", u"v", u"root's"), 0);
    ForkedChild fallen([] {
        const bool hasRights = SetText(u"k", u"v", u"root's", QX_HKEY_CONFIG) == 0 &&
                               SetText(u"k", u"w", u"root's") == 0 && Text(u"k", u"v") == u"root's";
        const bool gaveUp = ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
        const bool readsMachine = Text(u"k", u"v", QX_HKEY_CONFIG) == u"root's";
        // First of what was read before: it is not to be told any more.
        const bool refused = Exists(QX_HKEY_USER, u"k", u"v") == QX_E_ACCESSDENIED &&
                             SetText(u"k", u"v", u"mine", QX_HKEY_CONFIG) == QX_E_ACCESSDENIED &&
                             SetText(u"k", u"v", u"mine") == QX_E_ACCESSDENIED;
        return hasRights && gaveUp && readsMachine && refused ? 0 : 1;
    });
    EXPECT_EQ(fallen.Wait(), 0);
    EXPECT_EQ(Text(u"k", u"v"), u"root's");
    EXPECT_EQ(Text(u"k", u"v", QX_HKEY_CONFIG), u"root's");
}

// The stored form of ASCII text, as a literal.
std::string Stored(const std::string& text) {
    std::string literal = "x'";
    for (const char unit : text) {
        char digits[5];
        std::snprintf(digits, sizeof digits, "00%02x", static_cast<unsigned>(unit));
        literal += digits;
    }
    return literal + "'";
}

// Whatever the file is, each call comes back, and a new process can do it again.
int UseAll() {
    Exists(QX_HKEY_USER, u"", u"v");
    Exists(QX_HKEY_USER, u"k", u"v");
    SubkeysOf(u"");
    SubkeysOf(u"k");
    QXHandle values;
    if (QXRegistryOpenValueEnum(QX_HKEY_USER, u"k", &values) == 0) {
        char16_t name[4];
        uint32_t length = 4;
        uint32_t type = 0;
        uint32_t size = 0;
        QXRegistryEnumNextValue(values, name, &length, &type, nullptr, &size);
        QXRegistryCloseEnum(values);
    }
    SetText(u"k\\new", u"v", u"text");
    QXRegistryDeleteValue(QX_HKEY_USER, u"k", u"v");
    QXRegistryDeleteKey(QX_HKEY_USER, u"k");
    return 0;
}

TEST_F(RegistryHostile, ACraftedStoreIsAnErrorAndNothingWorse) {
    const std::string kEndless =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) SELECT i";
    const std::string rows[] = {
        "UPDATE keys SET id=-9 WHERE path=" + Stored("USER\\K"),
        "UPDATE keys SET id=3 WHERE path=" + Stored("USER\\K"),
        "UPDATE keys SET id=0 WHERE id=5",
        "UPDATE keys SET id=7000000000000000000 WHERE path=" + Stored("USER\\K"),
        "UPDATE keys SET name=x'' WHERE path=" + Stored("USER\\K\\A"),
        "UPDATE keys SET name=" + Stored("\\") + " WHERE path=" + Stored("USER\\K\\A"),
        "UPDATE keys SET name=" + Stored(std::string(1, '\0')) +
            " WHERE path=" + Stored("USER\\K\\A"),
        "UPDATE keys SET name=zeroblob(1000000), folded=zeroblob(1000001)",
        "UPDATE keys SET name=7, folded='text', path=id",
        "UPDATE keys SET parent=id",
        "UPDATE vals SET name=x'00', type='text', data=1.5",
        "UPDATE sqlite_sequence SET seq=9223372036854775807",
        "CREATE TRIGGER t AFTER INSERT ON keys BEGIN INSERT INTO vals " + kEndless +
            ",i,i,i,i,i FROM n; END",
        "CREATE TRIGGER t BEFORE UPDATE ON vals BEGIN DELETE FROM keys; END",
        "ALTER TABLE keys RENAME TO k; CREATE VIEW keys AS " + kEndless +
            " AS id, i AS parent, x'' AS folded, x'' AS name, i AS path FROM n WHERE i<0",
        "ALTER TABLE vals RENAME TO v; CREATE VIEW vals AS " + kEndless +
            " AS id, i AS key, x'' AS folded, x'' AS name, i AS type, i AS data FROM n WHERE i<0",
        "CREATE INDEX i ON vals(hex(zeroblob(1000)))",
        "DROP TABLE vals; CREATE TABLE vals(id, key, folded, name, type,"
        " data AS (zeroblob(1000)))",
        "DROP TABLE keys",
        "PRAGMA user_version=2",
    };
    const fs::path store = File("user.db");
    for (const std::string& row : rows) {
        ASSERT_EQ(ForkedChild([] {
                      return SetText(u"k\\a", u"v", u"text") == 0 && SetText(u"k", u"v", u"t") == 0
                                 ? 0
                                 : 1;
                  }).Wait(),
                  0);
        Execute(store, row);
        for (int round = 0; round < 2; ++round) {
            EXPECT_EQ(ForkedChild(UseAll).Wait(), 0) << row;
        }
        for (const char* name : {"user.db", "user.db-wal", "user.db-shm"}) {
            fs::remove(File(name));
        }
    }
}

TEST_F(RegistryHostile, OnlyRegularFilesAreOpened) {
    ASSERT_EQ(ForkedChild([] { return SetText(u"k", u"v", u"text"); }).Wait(), 0);
    WriteLogBack(File("user.db"));
    const fs::path elsewhere = File("elsewhere");
    std::ofstream(elsewhere) << "not ours";
    for (const char* name : {"user.db-wal", "user.db-shm", "user.db-journal"}) {
        for (const bool isPipe : {true, false}) {
            fs::remove(File(name));
            if (isPipe) {
                ASSERT_EQ(::mkfifo(File(name).c_str(), 0600), 0);
            } else {
                fs::create_symlink(elsewhere, File(name));
            }
            EXPECT_EQ(Exists(QX_HKEY_USER, u"k", u"v"), QX_E_FAIL) << name << isPipe;
            EXPECT_EQ(SetText(u"k", u"v", u"other"), QX_E_FAIL) << name << isPipe;
            fs::remove(File(name));
        }
    }
    EXPECT_EQ(fs::file_size(elsewhere), 8u);
    EXPECT_EQ(Text(u"k", u"v"), u"text");
}

}  // namespace

// The store under load, under kill, damaged, shared by processes and users, and where it stands.
#include <pthread.h>
#include <sched.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <fstream>
#include <iterator>
#include <thread>

#include "config/registry_support.h"
#include "posix/support/comes_true.h"
#include "posix/support/forked_child.h"
#include "support/allocation_fault.h"

extern "C" [[gnu::weak]] void __lsan_disable();
extern "C" [[gnu::weak]] void __lsan_enable();

namespace {

using RegistryStore = Registry;

constexpr uid_t kNobody = 65534;

std::u16string NumberName(int number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

QXResult SetNumber(int name, uint32_t value, const char16_t* path = u"numbers") {
    return QXRegistrySetValue(QX_HKEY_USER, path, NumberName(name).c_str(), QX_REG_DWORD, &value,
                              sizeof value);
}

bool HasNumber(int name, uint32_t expected, const char16_t* path = u"numbers") {
    uint32_t value = 0;
    uint32_t length = sizeof value;
    return QXRegistryGetValue(QX_HKEY_USER, path, NumberName(name).c_str(), nullptr, &value,
                              &length) == 0 &&
           value == expected;
}

// A value whose words are all the same: one that is torn shows it.
using Block = std::array<uint32_t, 2000>;

bool WriteBlock(uint32_t word) {
    Block block;
    block.fill(word);
    return QXRegistrySetValue(QX_HKEY_USER, u"hot", u"block", QX_REG_BINARY, block.data(),
                              sizeof block) == 0;
}

bool BlockIsWhole() {
    Block block;
    uint32_t length = sizeof block;
    return QXRegistryGetValue(QX_HKEY_USER, u"hot", u"block", nullptr, block.data(), &length) ==
               0 &&
           length == sizeof block &&
           std::all_of(block.begin(), block.end(), [&](uint32_t w) { return w == block[0]; });
}

bool WriteRange(int first, int count) {
    for (int i = first; i < first + count; ++i) {
        if (SetNumber(i, static_cast<uint32_t>(i)) != 0 ||
            (i % 10 == 0 && !WriteBlock(static_cast<uint32_t>(i)))) {
            return false;
        }
    }
    return true;
}

int WriteFromTwoThreads(int first) {
    bool other = false;
    std::thread thread([&] { other = WriteRange(first + 1000, 1000); });
    const bool own = WriteRange(first, 1000);
    thread.join();
    return own && other ? 0 : 1;
}

TEST_F(RegistryStore, TakesWritersFromManyProcessesAndThreadsAtOnce) {
    // Nobody has made the store: the processes do, all at once.
    std::vector<ForkedChild> writers;
    writers.reserve(4);
    for (int i = 0; i < 4; ++i) {
        writers.emplace_back([i] { return WriteFromTwoThreads(2000 * i); });
    }
    SharedWithChildren<std::atomic<bool>> done;
    ForkedChild reader([&] {
        while (Exists(QX_HKEY_USER, u"hot", u"block") == QX_E_NOTFOUND) {
            ::sched_yield();
        }
        while (!*done) {
            if (!BlockIsWhole()) {
                return 1;
            }
        }
        return 0;
    });
    for (ForkedChild& writer : writers) {
        EXPECT_EQ(writer.Wait(), 0);
    }
    *done = true;
    EXPECT_EQ(reader.Wait(), 0);
    for (int i = 0; i < 8000; ++i) {
        ASSERT_TRUE(HasNumber(i, static_cast<uint32_t>(i))) << i;
    }
}

TEST_F(RegistryStore, LosesNothingThatWasReportedWhenWritersAreKilled) {
    SharedWithChildren<std::atomic<int>> written;
    for (int round = 0; round < 50; ++round) {
        const int start = *written;
        ForkedChild writer([&] {
            for (int i = start; SetNumber(i, static_cast<uint32_t>(i)) == 0; ++i) {
                *written = i + 1;
            }
            return 1;
        });
        while (*written < start + 1 + round % 7) {
            ::sched_yield();
        }
        writer.Kill();
        ASSERT_TRUE(HasNumber(*written - 1, static_cast<uint32_t>(*written - 1))) << round;
    }
    for (int i = 0; i < *written; ++i) {
        ASSERT_TRUE(HasNumber(i, static_cast<uint32_t>(i))) << i;
    }
}

TEST_F(RegistryStore, WorksOnBothSidesOfAForkWhileAThreadIsInside) {
    ASSERT_EQ(SetText(u"k\\a", u"v", u"before"), 0);
    ASSERT_EQ(SetText(u"k\\b", u"v", u"before"), 0);
    QXHandle keys;
    ASSERT_EQ(QXRegistryOpenKeyEnum(QX_HKEY_USER, u"k", &keys), 0);
    std::atomic<bool> done{false};
    bool busyOneSucceeds = true;
    std::thread busyOne([&] {
        while (!done) {
            busyOneSucceeds &= SetNumber(0, 0, u"thread") == 0 && HasNumber(0, 0, u"thread");
        }
    });
    for (int i = 0; i < 20; ++i) {
        ForkedChild child([&] {
            const bool reads = Text(u"k\\a", u"v") == u"before" && Names(keys).size() == 2;
            return reads && SetNumber(i, 1, u"child") == 0 ? 0 : 1;
        });
        EXPECT_EQ(SetNumber(i, 2, u"parent"), 0);
        EXPECT_EQ(child.Wait(), 0);
        EXPECT_TRUE(HasNumber(i, 1, u"child"));
    }
    done = true;
    busyOne.join();
    EXPECT_TRUE(busyOneSucceeds);
    EXPECT_EQ(Names(keys).size(), 2u);
    QXRegistryCloseEnum(keys);
}

// The types that no function here can write, as another program may have written them.
TEST_F(RegistryStore, ReadsForeignTypes) {
    constexpr uint32_t kUntouched = 77;
    const struct {
        int native;
        uint32_t byName;
    } rows[] = {{0, QX_REG_BINARY}, {11, QX_REG_QWORD}, {5, 5}, {8, 8}, {100, 100}};
    ASSERT_EQ(SetText(u"k", u"v", u"abc"), 0);
    sqlite3* database = nullptr;
    ::sqlite3_open(File("user.db").c_str(), &database);
    for (const auto& row : rows) {
        const std::string update = "UPDATE vals SET type=" + std::to_string(row.native);
        ASSERT_EQ(::sqlite3_exec(database, update.c_str(), nullptr, nullptr, nullptr), SQLITE_OK);
        char16_t text[4];
        uint32_t length = sizeof text;
        uint32_t type = kUntouched;
        // What is changed behind the library's back is noticed within a second.
        EXPECT_TRUE(ComesTrue([&] {
            return QXRegistryGetValue(QX_HKEY_USER, u"k", u"v", &type, text, &length) == 0 &&
                   type == row.byName;
        })) << type;
        QXHandle values;
        ASSERT_EQ(QXRegistryOpenValueEnum(QX_HKEY_USER, u"k", &values), 0);
        char16_t name[2];
        uint32_t nameLength = 2;
        type = kUntouched;
        EXPECT_EQ(QXRegistryEnumNextValue(values, name, &nameLength, &type, text, &length), 0);
        EXPECT_EQ(type, kUntouched);
        EXPECT_EQ(nameLength, 1u);
        QXRegistryCloseEnum(values);
    }
    ::sqlite3_close(database);
}

void MakeForeignDatabase(const std::filesystem::path& file) {
    sqlite3* database = nullptr;
    ::sqlite3_open(file.c_str(), &database);
    ::sqlite3_exec(database, "CREATE TABLE keys(id); INSERT INTO keys VALUES(1)", nullptr, nullptr,
                   nullptr);
    ::sqlite3_close(database);
}

void MakeCutStore(const std::filesystem::path& file) {
    ForkedChild([] { return SetText(u"k", u"v", u"text"); }).Wait();
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    sqlite3_exec(database, "PRAGMA wal_checkpoint(TRUNCATE)", nullptr, nullptr, nullptr);
    sqlite3_close(database);
    std::filesystem::resize_file(file, 5000);
}

std::string Contents(const std::filesystem::path& file) {
    if (std::filesystem::is_directory(file)) {
        return "directory";
    }
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(RegistryStore, LeavesAFileThatIsNotItsOwnAlone) {
    const struct {
        const char* what;
        void (*make)(const std::filesystem::path&);
    } rows[] = {
        {"text", [](const auto& file) { std::ofstream(file) << std::string(5000, 't'); }},
        {"directory", [](const auto& file) { std::filesystem::create_directory(file); }},
        {"foreign database", MakeForeignDatabase},
        {"store that was cut off", MakeCutStore},
    };
    const std::filesystem::path file = File("user.db");
    for (const auto& row : rows) {
        row.make(file);
        const std::string before = Contents(file);
        ForkedChild user([] {
            const bool reads = Exists(QX_HKEY_USER, u"k", u"v") == QX_E_FAIL;
            const bool writes = SetText(u"k", u"v", u"other") == QX_E_FAIL;
            return reads && writes && QXRegistryDeleteKey(QX_HKEY_USER, u"k") == QX_E_FAIL ? 0 : 1;
        });
        EXPECT_EQ(user.Wait(), 0) << row.what;
        EXPECT_EQ(Contents(file), before) << row.what;
        for (const char* name : {"user.db", "user.db-wal", "user.db-shm"}) {
            std::filesystem::remove_all(File(name));
        }
    }
}

TEST_F(RegistryStore, WritesNeitherWithoutItsDirectoryNorWhereItMayNot) {
    const std::string missing = File("missing");
    ::setenv("W64QXCORE6_REGISTRY", missing.c_str(), 1);
    EXPECT_EQ(Exists(QX_HKEY_USER, u"k", u"v"), QX_E_NOTFOUND);
    EXPECT_EQ(SetText(u"k", u"v", u"text"), QX_E_NOTFOUND);
    EXPECT_FALSE(std::filesystem::exists(missing));
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    std::filesystem::create_directory(missing);
    ::chmod(m_registry.Folder().c_str(), 0755);
    ForkedChild stranger([] {
        const bool dropped = ::setuid(kNobody) == 0;
        const bool reads = Exists(QX_HKEY_USER, u"k", u"v") == QX_E_NOTFOUND;
        return dropped && reads && SetText(u"k", u"v", u"text") == QX_E_ACCESSDENIED ? 0 : 1;
    });
    EXPECT_EQ(stranger.Wait(), 0);
    EXPECT_TRUE(std::filesystem::is_empty(missing));
}

int ReadMachineTreeAsNobody() {
    if (::setuid(kNobody) != 0) {
        return 1;
    }
    QXHandle keys;
    const struct {
        QXResult result;
        QXResult expected;
    } rows[] = {
        {Exists(QX_HKEY_CONFIG, u"k", u"v"), QX_S_OK},
        {SetText(u"k", u"v", u"other", QX_HKEY_CONFIG), QX_E_ACCESSDENIED},
        {SetText(u"new", u"v", u"other", QX_HKEY_CONFIG), QX_E_ACCESSDENIED},
        {QXRegistryDeleteValue(QX_HKEY_CONFIG, u"k", u"v"), QX_E_ACCESSDENIED},
        {QXRegistryDeleteValue(QX_HKEY_CONFIG, u"none", u"v"), QX_E_NOTFOUND},
        {QXRegistryDeleteKey(QX_HKEY_CONFIG, u"k"), QX_E_FAIL},
        {QXRegistryOpenKeyEnum(QX_HKEY_CONFIG, u"k", &keys), QX_S_OK},
        {Exists(QX_HKEY_CONFIG, u"k", u"v"), QX_S_OK},
    };
    const bool good = std::all_of(std::begin(rows), std::end(rows),
                                  [](const auto& row) { return row.result == row.expected; });
    QXRegistryCloseEnum(keys);
    return good && Text(u"k", u"v", QX_HKEY_CONFIG) == u"text" ? 0 : 2;
}

TEST_F(RegistryStore, OtherUsersReadTheMachineTreeAndCannotWriteIt) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ::chmod(m_registry.Folder().c_str(), 0755);
    ::umask(077);
    for (const ChildEnd end : {ChildEnd::kAtOnce, ChildEnd::kThroughExitHandlers}) {
        ForkedChild writer([] { return SetText(u"k", u"v", u"text", QX_HKEY_CONFIG); }, end);
        ASSERT_EQ(writer.Wait(), 0);
        EXPECT_EQ(ForkedChild(ReadMachineTreeAsNobody).Wait(), 0) << "the last writer has ended";
    }
    ASSERT_EQ(SetText(u"k", u"w", u"text", QX_HKEY_CONFIG), 0);
    EXPECT_EQ(ForkedChild(ReadMachineTreeAsNobody).Wait(), 0) << "a writer is there";
}

// Fails each allocation of a call in turn. Without a fault it succeeds; with one it gives
// `failure`, or anything but success for a `failure` of 0.
template <typename Call>
int FailEachAllocationOf(QXResult failure, Call&& call) {
    return ForEachFailingAllocation([&] {
        const QXResult result = call();
        const bool failed = AllocationHasFailed();
        EXPECT_EQ(failure != 0 ? result == failure : result != 0, failed) << result;
        return result == 0;
    });
}

TEST_F(RegistryStore, UserWhoComesToHaveTheRightCanWrite) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ::chmod(m_registry.Folder().c_str(), 0755);
    ForkedChild owner([] { return SetText(u"k", u"v", u"text", QX_HKEY_CONFIG); });
    ASSERT_EQ(owner.Wait(), 0);
    ForkedChild changing([] {
        const bool denied = ::seteuid(65534) == 0 && Text(u"k", u"v", QX_HKEY_CONFIG) == u"text" &&
                            SetText(u"k", u"v", u"mine", QX_HKEY_CONFIG) == QX_E_ACCESSDENIED;
        const bool allowed = ::seteuid(0) == 0 && SetText(u"k", u"v", u"mine", QX_HKEY_CONFIG) == 0;
        return denied && allowed ? 0 : 1;
    });
    EXPECT_EQ(changing.Wait(), 0);
}

TEST_F(RegistryStore, FollowsTheFileThatIsAtItsPlace) {
    ASSERT_EQ(SetText(u"k\\a", u"v", u"old"), 0);
    QXHandle keys;
    ASSERT_EQ(QXRegistryOpenKeyEnum(QX_HKEY_USER, u"k", &keys), 0);
    for (const char* name : {"user.db", "user.db-wal", "user.db-shm"}) {
        std::filesystem::remove(File(name));
    }
    EXPECT_EQ(SetText(u"other\\a", u"v", u"new"), 0);
    EXPECT_TRUE(std::filesystem::exists(File("user.db")));
    EXPECT_EQ(Text(u"other\\a", u"v"), u"new");
    EXPECT_EQ(Text(u"k\\a", u"v"), u"<not found>");
    EXPECT_TRUE(Names(keys).empty());
    QXRegistryCloseEnum(keys);
}

// A handler that a program installs runs before the library's own, or after it if it came first.
TEST_F(RegistryStore, NothingIsOpenAcrossAForkWhoseHandlersUseIt) {
    static const auto use = [] { SetText(u"k", u"v", u"in a handler"); };
    ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
    ASSERT_EQ(::pthread_atfork(use, nullptr, nullptr), 0);
    const auto countOpen = [this] {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code ignored;
            const auto target = std::filesystem::read_symlink(entry, ignored).string();
            count += target.starts_with(m_registry.Folder().string());
        }
        return count;
    };
    ForkedChild child(countOpen);
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(Text(u"k", u"v"), u"in a handler");
}

TEST_F(RegistryStore, SurvivesTheFailureOfEachAllocation) {
    ASSERT_EQ(SetText(u"k\\below", u"v", u"%HOME%", QX_HKEY_USER, QX_REG_EXPAND_STRING), 0);
    const auto get = [] {
        char16_t text[200];
        uint32_t type;
        uint32_t length = sizeof text;
        return QXRegistryGetValue(QX_HKEY_USER, u"k\\below", u"v", &type, text, &length);
    };
    EXPECT_GE(FailEachAllocationOf(QX_E_OUTOFMEMORY, get), 2);
    const auto set = [] { return SetText(u"k\\new\\one", u"a value", u"t"); };
    EXPECT_GE(FailEachAllocationOf(QX_E_OUTOFMEMORY, set), 2);
    const auto deleteValue = [] {
        return QXRegistryDeleteValue(QX_HKEY_USER, u"k\\new\\one", u"a value");
    };
    EXPECT_GT(FailEachAllocationOf(QX_E_OUTOFMEMORY, deleteValue), 1);
    QXHandle keys;
    const auto enumerate = [&] { return QXRegistryOpenKeyEnum(QX_HKEY_USER, u"k", &keys); };
    // Without memory for the record the native key stays open, on purpose.
    if (__lsan_disable != nullptr) {
        __lsan_disable();
    }
    EXPECT_GT(FailEachAllocationOf(0, enumerate), 1);
    if (__lsan_enable != nullptr) {
        __lsan_enable();
    }
    EXPECT_EQ(Names(keys), (std::vector<std::u16string>{u"below", u"new"}));
    QXRegistryCloseEnum(keys);
    // A step that fails unseen leaves nothing behind, one that is seen leaves what can be deleted.
    bool failed = true;
    for (int n = 1; failed; ++n) {
        ASSERT_EQ(SetText(u"k\\new\\one", u"v", u"t"), 0);
        FailAllocation(n);
        const QXResult result = QXRegistryDeleteKey(QX_HKEY_USER, u"k\\new");
        failed = AllocationHasFailed();
        FailAllocation(0);
        EXPECT_EQ(SubkeysOf(u"k").size(), result == 0 ? 1u : 2u) << n;
        EXPECT_TRUE(failed || result == 0);
    }
}

TEST_F(RegistryStore, LooksAtTheEnvironmentOnceAndReadingMakesNothing) {
    EXPECT_EQ(Text(u"k", u"v"), u"<not found>");
    EXPECT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"k"), QX_E_FAIL);
    EXPECT_TRUE(std::filesystem::is_empty(m_registry.Folder()));
    ::setenv("W64QXCORE6_REGISTRY", "/nowhere", 1);
    EXPECT_EQ(SetText(u"k", u"v", u"text"), 0);
    EXPECT_TRUE(std::filesystem::exists(File("user.db")));
}

TEST_F(RegistryStore, MakesTheUsersDirectoryForTheUserAlone) {
    ::unsetenv("W64QXCORE6_REGISTRY");
    ::setenv("HOME", m_registry.Folder().c_str(), 1);
    ::setenv("XDG_CONFIG_HOME", "relative", 1);
    ::umask(0);
    ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
    using std::filesystem::perms;
    const auto modeOf = [this](const char* path) {
        return std::filesystem::status(File(path)).permissions();
    };
    EXPECT_EQ(modeOf(".config/w64qxcore6"), perms::owner_all);
    EXPECT_EQ(modeOf(".config/w64qxcore6/user.db"), perms::owner_read | perms::owner_write);
    EXPECT_EQ(modeOf(".config/w64qxcore6/user.db-wal"), perms::owner_read | perms::owner_write);
}

TEST_F(RegistryStore, ExpandsBytesThatAreNoText) {
    ::setenv("QX_BAD", "<\xC3>\xED\xA0\x80", 1);
    ASSERT_EQ(SetText(u"k", u"v", u"%QX_BAD%", QX_HKEY_USER, QX_REG_EXPAND_STRING), 0);
    EXPECT_EQ(Text(u"k", u"v"), u"<\uFFFD>\uFFFD\uFFFD\uFFFD");
}

}  // namespace

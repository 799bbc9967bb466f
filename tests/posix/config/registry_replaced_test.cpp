// The files of a store that are removed, replaced or cut while processes use them.
#include <sched.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <array>
#include <atomic>
#include <functional>

#include "config/registry_support.h"
#include "posix/config/database.h"
#include "posix/support/forked_child.h"

namespace {

namespace fs = std::filesystem;
using RegistryReplaced = Registry;

// A whole copy of the store in one file, as a tool for databases makes it.
void BackUp(const fs::path& store, const fs::path& copy) {
    Execute(store, "VACUUM INTO '" + copy.string() + "'");
}

bool IsWholeDatabase(const fs::path& store) {
    sqlite3* database = nullptr;
    sqlite3_stmt* check = nullptr;
    ::sqlite3_open(store.c_str(), &database);
    ::sqlite3_prepare_v2(database, "PRAGMA integrity_check", -1, &check, nullptr);
    const bool whole =
        ::sqlite3_step(check) == SQLITE_ROW &&
        std::string(reinterpret_cast<const char*>(::sqlite3_column_text(check, 0))) == "ok";
    ::sqlite3_finalize(check);
    ::sqlite3_close(database);
    return whole;
}

bool SetsHold(int first, int count) {
    for (int i = first; i < first + count; ++i) {
        if (SetText(u"k", (u"v" + std::u16string(1, static_cast<char16_t>(u'a' + i))).c_str(),
                    u"text") != 0) {
            return false;
        }
    }
    return true;
}

TEST_F(RegistryReplaced, ABackupThatIsMovedToItsPlaceIsTheStore) {
    const fs::path store = File("user.db");
    const fs::path backup = File("backup");
    ASSERT_EQ(SetText(u"k", u"v", u"backed up"), 0);
    ASSERT_NO_FATAL_FAILURE(BackUp(store, backup));
    SharedWithChildren<std::atomic<int>> step;
    // Two that know the old file, and enough in its log that it would do harm.
    ForkedChild other([&] {
        const bool before = SetText(u"other", u"v", u"old") == 0;
        *step = 1;
        while (*step != 2) {
            ::sched_yield();
        }
        const bool follows = SetText(u"other", u"w", u"new") == 0;
        return before && follows && Text(u"k", u"v") == u"backed up" &&
                       Text(u"other", u"v") == u"<not found>"
                   ? 0
                   : 1;
    });
    while (*step != 1) {
        ::sched_yield();
    }
    ASSERT_TRUE(SetsHold(0, 26));
    ASSERT_EQ(SetText(u"k", u"v", std::u16string(5000, u'x')), 0);
    fs::rename(backup, store);
    EXPECT_EQ(SetText(u"k", u"after", u"kept"), 0);
    *step = 2;
    EXPECT_EQ(other.Wait(), 0);
    EXPECT_EQ(Text(u"k", u"v"), u"backed up");
    EXPECT_EQ(Text(u"k", u"after"), u"kept");
    EXPECT_EQ(Text(u"other", u"w"), u"new");
    EXPECT_EQ(Text(u"k", u"va"), u"<not found>");
    EXPECT_TRUE(IsWholeDatabase(store));
}

TEST_F(RegistryReplaced, SideFilesThatAreDamagedInUseAreNoticed) {
    const auto remove = [this](const char* name) { fs::remove(File(name)); };
    const auto empty = [this](const char* name) { fs::resize_file(File(name), 0); };
    const struct {
        const char* what;
        std::function<void()> damage;
        bool losesTheLog;
    } rows[] = {
        {"log removed", [&] { remove("user.db-wal"); }, true},
        {"index removed", [&] { remove("user.db-shm"); }, false},
        {"both removed", [&] { remove("user.db-wal"), remove("user.db-shm"); }, true},
        {"log emptied", [&] { empty("user.db-wal"); }, true},
        {"index emptied", [&] { empty("user.db-shm"); }, false},
        {"both emptied", [&] { empty("user.db-wal"), empty("user.db-shm"); }, true},
        {"index replaced",
         [&] {
             fs::copy_file(File("user.db-shm"), File("copy"));
             fs::rename(File("copy"), File("user.db-shm"));
         },
         false},
    };
    for (const auto& row : rows) {
        ASSERT_EQ(SetText(u"k", u"v", u"old"), 0) << row.what;
        row.damage();
        if (!row.losesTheLog) {
            EXPECT_EQ(Text(u"k", u"v"), u"old") << row.what;
        }
        EXPECT_EQ(SetText(u"k", u"after", u"kept"), 0) << row.what;
        EXPECT_EQ(TextInFile(File("user.db"), "after"), u"kept") << row.what;
        EXPECT_EQ(Text(u"k", u"after"), u"kept") << row.what;
        EXPECT_TRUE(IsWholeDatabase(File("user.db"))) << row.what;
        EXPECT_EQ(QXRegistryDeleteValue(QX_HKEY_USER, u"k", u"after"), 0) << row.what;
    }
}

TEST_F(RegistryReplaced, AnEmptiedIndexDoesNotEndAProcessThatEnds) {
    ForkedChild child(
        [this] {
            const bool set = SetText(u"k", u"v", u"text") == 0;
            fs::resize_file(File("user.db-shm"), 0);
            return set ? 0 : 1;
        },
        ChildEnd::kThroughExitHandlers);
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(Text(u"k", u"v"), u"text");
}

// As on an image, or where somebody put the file for others to read.
TEST_F(RegistryReplaced, AStoreWithoutSideFilesCanBeReadByThoseWhoMayNotMakeThem) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ::chmod(m_registry.Folder().c_str(), 0755);
    ForkedChild writer([] { return SetText(u"k", u"v", u"text", QX_HKEY_CONFIG); });
    ASSERT_EQ(writer.Wait(), 0);
    WriteLogBack(File("machine.db"));
    fs::remove(File("machine.db-wal"));
    fs::remove(File("machine.db-shm"));
    SharedWithChildren<std::atomic<int>> step;
    ForkedChild reader([&] {
        const bool reads = ::setuid(65534) == 0 && Text(u"k", u"v", QX_HKEY_CONFIG) == u"text" &&
                           SetText(u"k", u"v", u"other", QX_HKEY_CONFIG) == QX_E_ACCESSDENIED;
        *step = 1;
        while (*step != 2) {
            ::sched_yield();
        }
        return reads && Text(u"k", u"v", QX_HKEY_CONFIG) == u"changed" ? 0 : 1;
    });
    while (*step != 1) {
        ::sched_yield();
    }
    EXPECT_FALSE(fs::exists(File("machine.db-wal")));
    EXPECT_EQ(SetText(u"k", u"v", u"changed", QX_HKEY_CONFIG), 0);
    *step = 2;
    EXPECT_EQ(reader.Wait(), 0);
    fs::remove(File("machine.db-shm"));
    EXPECT_EQ(ForkedChild([] {
                  return ::setuid(65534) == 0 &&
                                 Exists(QX_HKEY_CONFIG, u"k", u"v") == QX_E_ACCESSDENIED
                             ? 0
                             : 1;
              }).Wait(),
              0)
        << "what is in the log cannot be read without its index";
}

}  // namespace

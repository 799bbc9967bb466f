// How often the library looks at the files of its store, and what it finds: this program's own
// calls count, and its clock goes ahead, so that no directory has changed of late.
#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>

#include "config/registry_support.h"
#include "posix/config/database.h"
#include "posix/support/forked_child.h"

namespace {

int s_looks = 0;
constexpr time_t kAhead = 100;  // seconds
bool s_hasPatience = true;

}  // namespace

extern "C" int lstat(const char* path, struct stat* status) noexcept {
    ++s_looks;
    return ::fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static time_t passed = 0;
    const auto status = static_cast<int>(::syscall(SYS_clock_gettime, clock, time));
    if (clock == CLOCK_REALTIME_COARSE) {
        time->tv_sec += kAhead;
    } else if (clock == CLOCK_MONOTONIC_COARSE && !s_hasPatience) {
        time->tv_sec += passed += kAhead;
    }
    return status;
}

namespace {

namespace fs = std::filesystem;

class RegistryLook : public Registry {
  protected:
    // Whatever happens to the directory from here on has a later time.
    void WaitForALaterTime() {
        const fs::path scratch = m_registry.Folder().string() + "-scratch";
        const auto changed = [](const fs::path& path) {
            struct stat status;
            ::stat(path.c_str(), &status);
            return std::pair(status.st_ctim.tv_sec, status.st_ctim.tv_nsec);
        };
        fs::create_directory(scratch);
        while (changed(scratch) <= changed(m_registry.Folder())) {
            ::chmod(scratch.c_str(), 0700);
        }
        fs::remove(scratch);
    }
    // Such that the next write need not look.
    void SetAndLook() {
        WaitForALaterTime();
        EXPECT_EQ(SetText(u"k", u"v", u"looks"), 0);
        EXPECT_EQ(SetText(u"k", u"v", u"knows"), 0);
    }
};

// Once a second before reads, and before writes but for the word. No machine needs a second for
// each.
TEST_F(RegistryLook, IsTakenBeforeFewOperationsWhereNoNameChanges) {
    SetAndLook();
    s_looks = 0;
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(Text(u"k", u"v"), u"knows");
    }
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(SetText(u"k", u"v", u"knows"), 0);
    }
    EXPECT_LT(s_looks, 100);
}

TEST_F(RegistryLook, ShowsAWriterEachNameThatChanged) {
    const fs::path away = m_registry.Folder() / "away";
    const auto moveAway = [&](std::initializer_list<const char*> names) {
        for (const char* name : names) {
            fs::rename(File(name), away / name);
        }
    };
    const auto putAnother = [&] { fs::rename(away / "another", File("user.db")); };
    const struct {
        const char* what;
        std::function<void()> change;
    } rows[] = {
        {"nothing", [] {}},
        {"database replaced", putAnother},
        {"database moved, another put there", [&] { moveAway({"user.db"}), putAnother(); }},
        {"all moved",
         [&] {
             moveAway({"user.db", "user.db-wal", "user.db-shm", "user.db-word"});
         }},
        {"log moved", [&] { moveAway({"user.db-wal"}); }},
        {"index moved", [&] { moveAway({"user.db-shm"}); }},
        {"word moved", [&] { moveAway({"user.db-word"}); }},
        {"word cut", [&] { fs::resize_file(File("user.db-word"), 0); }},
    };
    for (const auto& row : rows) {
        fs::create_directory(away);
        SetAndLook();
        Execute(File("user.db"), "VACUUM INTO '" + (away / "another").string() + "'");
        WaitForALaterTime();
        row.change();
        EXPECT_EQ(SetText(u"k", u"v", u"after"), 0) << row.what;
        EXPECT_EQ(Text(u"k", u"v"), u"after") << row.what;
        EXPECT_EQ(TextInFile(File("user.db"), "v"), u"after") << row.what;
        fs::remove_all(away);
    }
}

// Another process has the lock under which the old files would be removed, and the log that seemed
// to be cut is whole again: the connection goes on.
TEST_F(RegistryLook, AConnectionThatCouldNotFollowTheFilesStillMarksWhatItWrites) {
    ASSERT_EQ(SetText(u"k", u"v", u"old"), 0);
    SharedWithChildren<std::atomic<int>> step;
    const auto reach = [&](int number) {
        while (*step < number) {
            ::sched_yield();
        }
    };
    ForkedChild reader([&] {
        const bool knows = Text(u"k", u"v") == u"old";
        *step = 1;
        reach(4);
        return knows && Text(u"k", u"v") == u"new" ? 0 : 1;
    });
    reach(1);
    ForkedChild locker([&] {
        sqlite3* database = nullptr;
        ::sqlite3_open(File("user.db").c_str(), &database);
        ::sqlite3_exec(database, "BEGIN IMMEDIATE", nullptr, nullptr, nullptr);
        *step = 2;
        reach(3);
        return 0;
    });
    reach(2);
    ASSERT_EQ(Text(u"k", u"other"), u"<not found>");
    const fs::path log = File("user.db-wal");
    fs::copy_file(log, File("copy"));
    fs::resize_file(log, 0);
    s_hasPatience = false;
    EXPECT_NE(SetText(u"k", u"v", u"lost"), 0);
    s_hasPatience = true;
    std::ofstream(log, std::ios::in) << std::ifstream(File("copy")).rdbuf();
    *step = 3;
    EXPECT_EQ(locker.Wait(), 0);
    EXPECT_EQ(SetText(u"k", u"v", u"new"), 0);
    *step = 4;
    EXPECT_EQ(reader.Wait(), 0);
}

}  // namespace

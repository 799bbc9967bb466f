#include <fcntl.h>
#include <gtest/gtest.h>
#include <qxcore/file.h>
#include <qxcore/time.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fstream>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "support/system.h"

namespace {

class FileStandIn : public testing::Test {
  protected:
    std::string Bytes(const std::string& name) const {
        return (m_directory.Path() / name).string();
    }
    std::u16string Units(const std::string& name) const {
        return (m_directory.Path() / name).u16string();
    }
    void Touch(const std::string& name) const { std::ofstream(Bytes(name)) << "content"; }

    QXHandle Open(const std::u16string& path, uint32_t flags) const {
        QXHandle file;
        errno = 77;
        EXPECT_GE(QXFileOpen(path.c_str(), flags, 0666, &file), 0);
        EXPECT_EQ(errno, 77);
        return file;
    }

    std::set<std::u16string> List() const {
        std::set<std::u16string> names;
        QXHandle directory;
        QXDirEntry entry;
        EXPECT_EQ(QXDirOpen(m_directory.Path().u16string().c_str(), &directory), QX_S_OK);
        while (QXDirRead(directory, &entry, 0) == QX_S_OK) {
            names.insert(entry.name);
        }
        QXDirClose(directory);
        names.erase(u".");
        names.erase(u"..");
        return names;
    }

    const TemporaryDirectory m_directory;
};

// Names that are no UTF-8, or hold a backslash, come as units that stand alone in no text.
TEST_F(FileStandIn, EveryNameThatIsListedCanBeOpenedAndDeleted) {
    const std::vector<std::string> names = {
        "plain",        "caf\xE9",         "\xFF\xFE",           "back\\slash", "\xF0\x9F\x98\x80",
        "\xED\xA0\x80", "cut\xF0\x9F\x98", std::string(255, 'x')};
    for (const std::string& name : names) {
        Touch(name);
    }
    ASSERT_EQ(symlink("nowhere", Bytes("link").c_str()), 0);
    const auto listed = List();
    EXPECT_EQ(listed.size(), names.size() + 1);
    EXPECT_EQ(listed.count(u"caf\xDCE9"), 1u);
    EXPECT_EQ(listed.count(u"back\xDC5Cslash"), 1u);
    for (const std::u16string& name : listed) {
        const std::u16string path = m_directory.Path().u16string() + u"/" + name;
        if (name != u"link") {
            EXPECT_EQ(QXFileClose(Open(path, QX_FILE_READ)), QX_S_OK);
        }
        EXPECT_EQ(QXFileDelete(path.c_str()), QX_S_OK);
    }
    EXPECT_TRUE(List().empty());
    QXHandle file;
    EXPECT_EQ(QXFileOpen(u"lone \xD800", QX_FILE_READ, 0, &file), QX_E_FAIL);
    EXPECT_EQ(QXFileOpen(std::u16string(250, u'a').append(250, u'\u20AC').c_str(), 0, 0, &file),
              QX_E_FAIL);
}

TEST_F(FileStandIn, LinksLeadWhereTheyLeadAndAreListedAsThemselves) {
    std::filesystem::create_directory(m_directory.Path() / "directory");
    ASSERT_EQ(symlink("directory", Bytes("to-directory").c_str()), 0);
    ASSERT_EQ(symlink("target", Bytes("to-missing").c_str()), 0);
    ASSERT_EQ(symlink("loop", Bytes("loop").c_str()), 0);
    QXHandle directory;
    QXDirEntry entry;
    ASSERT_EQ(QXDirOpen(m_directory.Path().u16string().c_str(), &directory), QX_S_OK);
    while (QXDirRead(directory, &entry, 0) == QX_S_OK) {
        if (std::u16string(entry.name).starts_with(u"to-")) {
            EXPECT_EQ(entry.mode, 0666u);
        }
    }
    QXDirClose(directory);
    QXHandle file;
    EXPECT_EQ(QXFileOpen(Units("to-missing").c_str(), QX_FILE_READ, 0, &file), QX_E_NOTFOUND);
    EXPECT_EQ(QXFileOpen(Units("loop").c_str(), QX_FILE_WRITE | QX_FILE_CREATE, 0666, &file),
              QX_E_FAIL);
    QXFileClose(Open(Units("to-missing"), QX_FILE_WRITE | QX_FILE_CREATE));
    EXPECT_TRUE(std::filesystem::exists(Bytes("target")));
}

TEST_F(FileStandIn, EntriesThatGoDuringAListingArePassedOver) {
    for (int i = 0; i < 2000; ++i) {
        Touch(std::to_string(i));
    }
    QXHandle directory;
    QXDirEntry entry;
    int listed = 0;
    ASSERT_EQ(QXDirOpen(m_directory.Path().u16string().c_str(), &directory), QX_S_OK);
    ASSERT_EQ(QXDirRead(directory, &entry, 0), QX_S_OK);
    for (const auto& each : std::filesystem::directory_iterator(m_directory.Path())) {
        std::filesystem::remove(each);
    }
    while (QXDirRead(directory, &entry, 0) == QX_S_OK) {
        ++listed;
    }
    QXDirClose(directory);
    EXPECT_LT(listed, 5);
}

// What the steps of a conversion give, one by one.
int64_t SecondsByTheSteps(time_t seconds) {
    const time_t now = time(nullptr);
    tm local;
    localtime_r(&now, &local);
    const time_t shifted = seconds + local.tm_gmtoff;
    tm calendar;
    gmtime_r(&shifted, &calendar);
    QXTimeRecord record;
    QXTimeFromTM(&calendar, &record);
    int64_t result = 0;
    return QXTimeToPosix(&record, &result) == QX_S_OK ? result : 0;
}

TEST_F(FileStandIn, TimesOfEntriesAreThoseOfTheStepsAlsoWhereTheZoneChanged) {
    setenv("TZ", "Europe/Moscow", 1);
    tzset();
    std::map<std::u16string, int64_t> expected;
    constexpr time_t kZoneChanged = 1414274400;
    for (int i = -200; i < 200; ++i) {
        const time_t seconds = kZoneChanged + i * (i % 2 == 0 ? 1801 : 90'061);
        const std::string name = std::to_string(i);
        Touch(name);
        const timespec times[2] = {{seconds, 0}, {seconds, 999'999'999}};
        ASSERT_EQ(utimensat(AT_FDCWD, Bytes(name).c_str(), times, 0), 0);
        expected[std::u16string(name.begin(), name.end())] = SecondsByTheSteps(seconds);
    }
    QXHandle directory;
    QXDirEntry entry;
    ASSERT_EQ(QXDirOpen(m_directory.Path().u16string().c_str(), &directory), QX_S_OK);
    while (QXDirRead(directory, &entry, 0) == QX_S_OK) {
        if (entry.name[0] != u'.') {
            EXPECT_EQ(entry.writeTime, expected[entry.name]);
            EXPECT_EQ(entry.accessTime, expected[entry.name]);
        }
    }
    QXDirClose(directory);
}

TEST_F(FileStandIn, DescriptorsAreNoStandardOnesAndNotInherited) {
    const int standardInput = dup(0);
    close(0);
    const QXHandle file = Open(Units("file"), QX_FILE_WRITE | QX_FILE_CREATE);
    EXPECT_EQ(fcntl(0, F_GETFD), -1);
    dup2(standardInput, 0);
    close(standardInput);
    int found = 0;
    for (const auto& each : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        if (std::filesystem::read_symlink(each, ignored) == Bytes("file")) {
            found = std::stoi(each.path().filename().string());
        }
    }
    EXPECT_GE(found, 3);
    EXPECT_EQ(fcntl(found, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(QXFileClose(file), QX_S_OK);
    EXPECT_EQ(fcntl(found, F_GETFD), -1);
}

TEST_F(FileStandIn, PipesEndWithoutASignal) {
    ASSERT_EQ(mkfifo(Bytes("pipe").c_str(), 0600), 0);
    const int keepOpen = open(Bytes("pipe").c_str(), O_RDWR | O_NONBLOCK);
    const QXHandle reading = Open(Units("pipe"), QX_FILE_READ);
    const QXHandle writing = Open(Units("pipe"), QX_FILE_WRITE);
    close(keepOpen);
    uint32_t done = 9;
    char buffer[4];
    EXPECT_EQ(QXFileWrite(writing, "abc", 3, &done), QX_S_OK);
    EXPECT_EQ(QXFileRead(reading, buffer, 4, &done), QX_S_OK);
    EXPECT_EQ(done, 3u);
    EXPECT_EQ(QXFileFlush(writing), QX_S_OK);
    QXFileClose(reading);
    EXPECT_EQ(QXFileWrite(writing, "abc", 3, &done), QX_E_FAIL);
    EXPECT_EQ(done, 0u);
    const int other = open(Bytes("pipe").c_str(), O_RDONLY | O_NONBLOCK);
    const QXHandle ending = Open(Units("pipe"), QX_FILE_READ);
    QXFileClose(writing);
    EXPECT_EQ(QXFileRead(ending, buffer, 4, &done), QX_E_FAIL);
    QXFileClose(ending);
    close(other);
}

TEST_F(FileStandIn, SignalsInterruptNothing) {
    ASSERT_EQ(mkfifo(Bytes("pipe").c_str(), 0600), 0);
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGALRM, &action, nullptr);
    const itimerval often = {{0, 200}, {0, 200}};
    const itimerval never = {};
    std::thread writer([this] {
        const QXHandle writing = Open(Units("pipe"), QX_FILE_WRITE);
        uint32_t done = 0;
        for (int i = 0; i < 200; ++i) {
            const std::string piece(10'000, 'x');
            EXPECT_EQ(QXFileWrite(writing, piece.data(), 10'000, &done), QX_S_OK);
            EXPECT_EQ(done, 10'000u);
        }
        QXFileClose(writing);
    });
    const QXHandle reading = Open(Units("pipe"), QX_FILE_READ);
    // Not earlier: an opening that is interrupted takes back the end that the other side has seen.
    setitimer(ITIMER_REAL, &often, nullptr);
    char buffer[1000];
    uint32_t done = 0;
    uint64_t sum = 0;
    while (QXFileRead(reading, buffer, sizeof buffer, &done) == QX_S_OK) {
        sum += done;
    }
    writer.join();
    setitimer(ITIMER_REAL, &never, nullptr);
    EXPECT_EQ(sum, 2'000'000u);
    QXFileClose(reading);
}

TEST_F(FileStandIn, ALimitOfSizeFailsAsAFullDiskDoes) {
    Touch("source");
    std::filesystem::resize_file(Bytes("source"), 100'000);
    signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {40'000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const QXResult result =
        QXFileCopy(Units("source").c_str(), Units("copy").c_str(), QX_FILE_CREATE, 0666, nullptr);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(result, QX_E_FAIL);
    EXPECT_EQ(std::filesystem::file_size(Bytes("copy")), 40'000u);
}

TEST_F(FileStandIn, ACopyToAFullDiskFailsAndLeavesWhatItWrote) {
    std::filesystem::create_directory(m_directory.Path() / "disk");
    Touch("source");
    std::filesystem::resize_file(Bytes("source"), 100'000);
    if (unshare(CLONE_NEWNS) != 0 ||
        mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("tmpfs", Bytes("disk").c_str(), "tmpfs", 0, "size=40k") != 0) {
        GTEST_SKIP() << "no file system may be mounted here";
    }
    QXHandle file = nullptr;
    EXPECT_EQ(QXFileCopy(Units("source").c_str(), Units("disk/copy").c_str(), QX_FILE_CREATE, 0666,
                         &file),
              QX_E_FAIL);
    EXPECT_EQ(file, QX_INVALID_HANDLE);
    EXPECT_EQ(std::filesystem::file_size(Bytes("disk/copy")), 40'960u);
    EXPECT_EQ(umount(Bytes("disk").c_str()), 0);  // also: nothing on it is open
}

TEST_F(FileStandIn, AWaitForALockGoesOnUnderSignals) {
    Touch("file");
    const QXHandle holding = Open(Units("file"), QX_FILE_READ | QX_FILE_WRITE);
    const QXHandle waiting = Open(Units("file"), QX_FILE_READ | QX_FILE_WRITE);
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    for (const uint32_t flags : {QX_FILE_LOCK_WAIT, QX_FILE_LOCK_WAIT | QX_FILE_LOCK_SHARED}) {
        ASSERT_EQ(QXFileLock(holding, 5, 5, 0), QX_S_OK);
        std::atomic<unsigned> number = 0;
        std::atomic<bool> locked = false;
        std::thread waiter([&] {
            number = ThreadNumber();
            EXPECT_EQ(QXFileLock(waiting, 0, 10, flags), QX_S_OK);
            locked = true;
            EXPECT_EQ(QXFileUnlock(waiting, 0, 10), QX_S_OK);
        });
        for (int signals = 0; signals < 20; ++signals) {
            while (number == 0 || !ThreadSleeps(number)) {
                std::this_thread::yield();
            }
            pthread_kill(waiter.native_handle(), SIGUSR1);
        }
        EXPECT_FALSE(locked);
        EXPECT_EQ(QXFileUnlock(holding, 5, 5), QX_S_OK);
        waiter.join();
    }
    QXFileClose(waiting);
    QXFileClose(holding);
}

TEST_F(FileStandIn, NoHandleIsGivenTwiceHoweverManyThereWere) {
    Touch("file");
    std::set<QXHandle> all;
    std::vector<QXHandle> open;
    for (int i = 0; i < 1000; ++i) {
        open.push_back(Open(Units("file"), QX_FILE_READ));
        EXPECT_TRUE(all.insert(open.back()).second);
        if (i % 3 == 0) {
            EXPECT_EQ(QXFileClose(open.front()), QX_S_OK);
            open.erase(open.begin());
        }
    }
    uint64_t size = 0;
    for (const QXHandle each : all) {
        const bool isOpen = std::find(open.begin(), open.end(), each) != open.end();
        EXPECT_EQ(QXFileGetSize(each, &size), isOpen ? QX_S_OK : QX_E_HANDLE);
        EXPECT_EQ(QXFileClose(each), isOpen ? QX_S_OK : QX_E_HANDLE);
    }
    EXPECT_EQ(QXFileGetSize(reinterpret_cast<QXHandle>(0x7FFF'FFFF'FFFF'FFFF), &size), QX_E_HANDLE);
}

// Each gets the file that it named, or is told that the handle is none any more.
TEST_F(FileStandIn, ClosingMeetsThoseWhoAreAtWork) {
    Touch("file");
    std::atomic<QXHandle> shared = Open(Units("file"), QX_FILE_READ);
    std::atomic<bool> ends = false;
    std::vector<std::thread> readers;
    for (int i = 0; i < 3; ++i) {
        readers.emplace_back([&] {
            while (!ends) {
                uint64_t size = 0;
                const QXResult result = QXFileGetSize(shared, &size);
                EXPECT_TRUE(result == QX_E_HANDLE || (result == QX_S_OK && size == 7));
            }
        });
    }
    for (int i = 0; i < 3000; ++i) {
        const QXHandle before = shared;
        EXPECT_EQ(QXFileClose(before), QX_S_OK);
        EXPECT_EQ(QXFileClose(before), QX_E_HANDLE);
        shared = Open(Units("file"), QX_FILE_READ);
    }
    ends = true;
    for (std::thread& reader : readers) {
        reader.join();
    }
    QXFileClose(shared);
}

TEST_F(FileStandIn, EitherLockGoesThroughAnyHandle) {
    Touch("file");
    for (const uint32_t access : {QX_FILE_READ, QX_FILE_WRITE}) {
        const QXHandle file = Open(Units("file"), access);
        const QXHandle other = Open(Units("file"), QX_FILE_READ | QX_FILE_WRITE);
        EXPECT_EQ(QXFileLock(file, 0, 10, 0), QX_S_OK);
        EXPECT_EQ(QXFileLock(other, 9, 1, 1), QX_E_FAIL);
        EXPECT_EQ(QXFileUnlock(file, 0, 10), QX_S_OK);
        EXPECT_EQ(QXFileLock(file, 0, 10, 1), QX_S_OK);
        EXPECT_EQ(QXFileLock(file, 5, 10, 1), QX_S_OK);
        EXPECT_EQ(QXFileUnlock(file, 0, 10), QX_S_OK);
        EXPECT_EQ(QXFileLock(other, 0, 5, 0), QX_S_OK);  // what the second lock does not cover
        EXPECT_EQ(QXFileLock(other, 5, 5, 0), QX_E_FAIL);
        EXPECT_EQ(QXFileLock(file, 0, 0, 0), QX_S_OK);
        EXPECT_EQ(QXFileUnlock(file, 0, 0), QX_S_OK);
        QXFileClose(other);
        QXFileClose(file);
    }
}

}  // namespace

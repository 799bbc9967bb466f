#include <fcntl.h>
#include <gtest/gtest.h>
#include <qxcore.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "support/blocked_call.h"
#include "support/system.h"
#include "support/unique_name.h"

namespace {

constexpr uint32_t kReadWrite = QX_FILE_READ | QX_FILE_WRITE;

class FileStandIn : public testing::Test {
  protected:
    std::string Bytes(const std::string& name) const {
        return (m_directory.Path() / name).string();
    }
    std::u16string Units(const std::string& name) const {
        return (m_directory.Path() / name).u16string();
    }
    void Touch(const std::string& name) const { WriteFile(Bytes(name), "content"); }

    static QXHandle Open(const std::u16string& path, uint32_t flags) {
        QXHandle file;
        errno = 77;
        EXPECT_GE(QXFileOpen(path.c_str(), flags, 0666, &file), 0);
        EXPECT_EQ(errno, 77);
        return file;
    }

    // Without "." and "..".
    std::map<std::u16string, QXDirEntry> List() const {
        std::map<std::u16string, QXDirEntry> entries;
        QXHandle directory;
        QXDirEntry entry;
        EXPECT_EQ(QXDirOpen(m_directory.Path().u16string().c_str(), &directory), QX_S_OK);
        while (QXDirRead(directory, &entry, 0) == QX_S_OK) {
            entries[entry.name] = entry;
        }
        QXDirClose(directory);
        entries.erase(u".");
        entries.erase(u"..");
        return entries;
    }

    const TemporaryDirectory m_directory;
};

// Names that are no UTF-8, or hold a backslash, come as units that stand alone in no text.
TEST_F(FileStandIn, EveryNameThatIsListedCanBeOpenedAndDeleted) {
    const std::string names[] = {"caf\xE9",      "back\\slash",     "\xF0\x9F\x98\x80",
                                 "\xED\xA0\x80", "cut\xF0\x9F\x98", std::string(255, 'x')};
    for (const std::string& name : names) {
        Touch(name);
    }
    const auto listed = List();
    EXPECT_EQ(listed.size(), std::size(names));
    EXPECT_EQ(listed.count(u"caf\xDCE9"), 1u);
    EXPECT_EQ(listed.count(u"back\xDC5Cslash"), 1u);
    for (const auto& [name, entry] : listed) {
        const std::u16string path = m_directory.Path().u16string() + u"/" + name;
        EXPECT_EQ(QXFileClose(Open(path, QX_FILE_READ)), QX_S_OK);
        EXPECT_EQ(QXFileDelete(path.c_str()), QX_S_OK);
    }
    EXPECT_TRUE(List().empty());
    QXHandle file;
    EXPECT_EQ(QXFileOpen(u"lone \xD800", QX_FILE_READ, 0, &file), QX_E_FAIL);
    EXPECT_EQ(QXFileOpen(std::u16string(250, u'a').append(250, u'\u20AC').c_str(), 0, 0, &file),
              QX_E_FAIL);
}

TEST_F(FileStandIn, LinksLeadWhereTheyLeadAndAreListedAndDeletedThemselves) {
    std::filesystem::create_directory(m_directory.Path() / "directory");
    ASSERT_EQ(symlink("directory", Bytes("to-directory").c_str()), 0);
    ASSERT_EQ(symlink("target", Bytes("to-missing").c_str()), 0);
    EXPECT_EQ(List()[u"to-directory"].mode, 0666u);
    EXPECT_EQ(List()[u"to-missing"].mode, 0666u);
    QXHandle file;
    EXPECT_EQ(QXFileOpen(Units("to-missing").c_str(), QX_FILE_READ, 0, &file), QX_E_NOTFOUND);
    QXFileClose(Open(Units("to-missing"), QX_FILE_WRITE | QX_FILE_CREATE));
    EXPECT_EQ(QXFileDelete(Units("to-missing").c_str()), QX_S_OK);
    EXPECT_TRUE(std::filesystem::exists(Bytes("target")));
}

TEST_F(FileStandIn, EntriesThatGoDuringAListingArePassedOver) {
    for (int i = 0; i < 2000; ++i) {
        Touch(std::to_string(i));
    }
    QXHandle directory;
    QXDirEntry entry;
    ASSERT_EQ(QXDirOpen(m_directory.Path().u16string().c_str(), &directory), QX_S_OK);
    ASSERT_EQ(QXDirRead(directory, &entry, 0), QX_S_OK);
    for (const auto& each : std::filesystem::directory_iterator(m_directory.Path())) {
        std::filesystem::remove(each);
    }
    int listed = 0;
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
    for (const auto& [name, entry] : List()) {
        EXPECT_EQ(entry.writeTime, expected[name]);
        EXPECT_EQ(entry.accessTime, expected[name]);
    }
}

TEST_F(FileStandIn, DescriptorsAreNoStandardOnesAndNotInherited) {
    const std::string name = UniqueName();
    const int standardInput = dup(0);
    close(0);
    const QXHandle file = Open(Units("file"), QX_FILE_WRITE | QX_FILE_CREATE);
    UFILE* const lines = QXFileOpenUTF16(Bytes("lines").c_str(), "w+");
    QXHandle memory = nullptr;
    EXPECT_GE(QXSharedMemOpen(name.c_str(), QX_FILE_CREATE, 0, 1, &memory), 0);
    EXPECT_EQ(fcntl(0, F_GETFD), -1);
    dup2(standardInput, 0);
    close(standardInput);
    std::vector<int> found;
    for (const auto& each : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code ignored;
        const std::string target = std::filesystem::read_symlink(each, ignored).string();
        if (target.starts_with(Bytes("")) || target.ends_with(name)) {
            found.push_back(std::stoi(each.path().filename().string()));
            EXPECT_EQ(fcntl(found.back(), F_GETFD), FD_CLOEXEC);
        }
    }
    EXPECT_EQ(found.size(), 3u);
    EXPECT_EQ(QXFileClose(file), QX_S_OK);
    QXFileCloseUTF16(lines);
    EXPECT_EQ(QXSharedMemClose(memory), QX_S_OK);
    for (const int descriptor : found) {
        EXPECT_EQ(fcntl(descriptor, F_GETFD), -1);
    }
}

TEST_F(FileStandIn, PipesEndWithoutASignal) {
    ASSERT_EQ(mkfifo(Bytes("pipe").c_str(), 0600), 0);
    const int keepOpen = open(Bytes("pipe").c_str(), O_RDWR | O_NONBLOCK);
    const QXHandle reading = Open(Units("pipe"), QX_FILE_READ);
    const QXHandle writing = Open(Units("pipe"), QX_FILE_WRITE);
    uint32_t done = 9;
    char buffer[4];
    EXPECT_EQ(QXFileWrite(writing, "abc", 3, &done), QX_S_OK);
    EXPECT_EQ(QXFileRead(reading, buffer, 4, &done), QX_S_OK);
    EXPECT_EQ(done, 3u);
    EXPECT_EQ(QXFileFlush(writing), QX_S_OK);
    const QXHandle ending = Open(Units("pipe"), QX_FILE_WRITE);
    QXFileClose(writing);
    close(keepOpen);
    QXFileClose(ending);
    EXPECT_EQ(QXFileRead(reading, buffer, 4, &done), QX_E_FAIL);
    const int again = open(Bytes("pipe").c_str(), O_RDWR | O_NONBLOCK);
    const QXHandle broken = Open(Units("pipe"), QX_FILE_WRITE);
    close(again);
    QXFileClose(reading);
    EXPECT_EQ(QXFileWrite(broken, "abc", 3, &done), QX_E_FAIL);
    EXPECT_EQ(done, 0u);
    QXFileClose(broken);
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
        const std::string piece(10'000, 'x');
        uint32_t done = 0;
        for (int i = 0; i < 200; ++i) {
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

// A limit of size, as a full disk does.
TEST_F(FileStandIn, ACopyThatFindsNoRoomFailsAndLeavesWhatItWrote) {
    Touch("source");
    std::filesystem::resize_file(Bytes("source"), 100'000);
    signal(SIGXFSZ, SIG_IGN);
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {40'000, before.rlim_max};
    const std::size_t open = MeasureFootprint().handles;
    setrlimit(RLIMIT_FSIZE, &small);
    QXHandle file = nullptr;
    const QXResult result =
        QXFileCopy(Units("source").c_str(), Units("copy").c_str(), QX_FILE_CREATE, 0666, &file);
    setrlimit(RLIMIT_FSIZE, &before);
    EXPECT_EQ(result, QX_E_FAIL);
    EXPECT_EQ(file, QX_INVALID_HANDLE);
    EXPECT_EQ(std::filesystem::file_size(Bytes("copy")), 40'000u);
    EXPECT_EQ(MeasureFootprint().handles, open);
}

TEST_F(FileStandIn, AWaitForALockGoesOnUnderSignals) {
    Touch("file");
    const QXHandle holding = Open(Units("file"), kReadWrite);
    const QXHandle waiting = Open(Units("file"), kReadWrite);
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    for (const uint32_t flags : {QX_FILE_LOCK_WAIT, QX_FILE_LOCK_WAIT | QX_FILE_LOCK_SHARED}) {
        ASSERT_EQ(QXFileLock(holding, 5, 5, 0), QX_S_OK);
        std::atomic<pthread_t> thread;
        BlockedCall lock([&] {
            thread = pthread_self();
            return QXFileLock(waiting, 0, 10, flags);
        });
        for (int signals = 0; signals < 20; ++signals) {
            pthread_kill(thread, SIGUSR1);
            std::this_thread::yield();
        }
        EXPECT_FALSE(lock.HasReturned());
        EXPECT_EQ(QXFileUnlock(holding, 5, 5), QX_S_OK);
        EXPECT_EQ(lock.Result(), QX_S_OK);
        EXPECT_EQ(QXFileUnlock(waiting, 0, 10), QX_S_OK);
    }
    QXFileClose(waiting);
    QXFileClose(holding);
}

// Each gets the file that it named, or is told that the handle is none any more.
TEST_F(FileStandIn, ClosingMeetsThoseWhoAreAtWork) {
    Touch("file");
    std::atomic<QXHandle> shared = Open(Units("file"), QX_FILE_READ);
    std::atomic<bool> ends = false;
    std::vector<std::jthread> readers;
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
        shared = Open(Units("file"), QX_FILE_READ);
        EXPECT_EQ(QXFileClose(before), QX_E_HANDLE);
    }
    ends = true;
    readers.clear();
    QXFileClose(shared);
}

TEST_F(FileStandIn, EitherLockGoesThroughAnyHandle) {
    Touch("file");
    const QXHandle other = Open(Units("file"), kReadWrite);
    for (const uint32_t access : {QX_FILE_READ, QX_FILE_WRITE}) {
        const QXHandle file = Open(Units("file"), access);
        EXPECT_EQ(QXFileLock(file, 0, 0, 0), QX_S_OK);
        EXPECT_EQ(QXFileUnlock(file, 0, 0), QX_S_OK);
        EXPECT_EQ(QXFileLock(file, 20, 5, 0), QX_S_OK);
        EXPECT_EQ(QXFileLock(other, 24, 1, 1), QX_E_FAIL);
        EXPECT_EQ(QXFileLock(file, 0, 10, 1), QX_S_OK);
        EXPECT_EQ(QXFileLock(file, 5, 10, 1), QX_S_OK);
        EXPECT_EQ(QXFileUnlock(file, 0, 10), QX_S_OK);
        EXPECT_EQ(QXFileLock(other, 0, 5, 0), QX_S_OK);  // what the second lock does not cover
        EXPECT_EQ(QXFileLock(other, 5, 5, 0), QX_E_FAIL);
        EXPECT_EQ(QXFileUnlock(other, 0, 5), QX_S_OK);
        QXFileClose(file);
        EXPECT_EQ(QXFileLock(other, 0, 99, 0), QX_S_OK);
        EXPECT_EQ(QXFileUnlock(other, 0, 99), QX_S_OK);
    }
    QXFileClose(other);
}

}  // namespace

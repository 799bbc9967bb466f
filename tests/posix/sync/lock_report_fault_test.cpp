// Reports that cannot be written: a full disk, no memory, a pipe that nobody reads.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <functional>

#include "support/allocation_fault.h"
#include "sync/lock_report_support.h"

namespace {

constexpr char kLongName[] = "a name that is too long to be kept without an allocation";

using LockReportFault = LockReport;

QXResult WithFilesUpTo(rlim_t bytes, const std::function<QXResult()>& body) {
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const QXResult result = body();
    setrlimit(RLIMIT_FSIZE, &before);
    return result;
}

// The signal of the limit, whose default is to end the process, does not get through.
TEST_F(LockReportFault, AFullDiskLeavesWholeLinesAndTheProcessAlive) {
    for (int count = 0; count < 20; ++count) {
        NewMutex(kLongName);
    }
    for (rlim_t limit = 0; limit < 1000; limit += 97) {
        std::filesystem::remove(Path());
        EXPECT_EQ(QX_E_FAIL, WithFilesUpTo(limit, [&] { return Dump(); }));
        const std::string text = Text();
        EXPECT_LE(text.size(), limit);
        EXPECT_TRUE(text.empty() || text.back() == '\n') << text;
        EXPECT_TRUE(limit < 97 || !text.empty());
        EXPECT_EQ(QX_S_OK, Dump());
        EXPECT_EQ(0u, Text().find(text + "BeginLockStatistics"));
    }
    EXPECT_EQ(QX_E_FAIL, QXDumpLockStats("t", u"/dev/full"));
}

TEST_F(LockReportFault, APipeThatNobodyReadsIsNotWaitedFor) {
    ASSERT_EQ(0, mkfifo(Path().c_str(), 0600));
    EXPECT_EQ(QX_E_FAIL, Dump());
    const int reader = open(Path().c_str(), O_RDONLY | O_NONBLOCK);
    EXPECT_EQ(QX_S_OK, Dump());
    char begin[6] = {};
    EXPECT_EQ(5, read(reader, begin, 5));
    EXPECT_STREQ("Begin", begin);
    close(reader);
}

TEST_F(LockReportFault, NoMemoryForTheReportIsAResult) {
    NewMutex(kLongName);
    const std::u16string path = Path().u16string();
    EXPECT_LE(2, ForEachFailingAllocation([&] {
                  const QXResult result = QXDumpLockStats("t", path.c_str());
                  EXPECT_TRUE(result == QX_S_OK || result == QX_E_OUTOFMEMORY) << result;
                  return QX_SUCCEEDED(result);
              }));
    EXPECT_TRUE(Text().empty() || Text().back() == '\n');
}

// The last allocation of a creation is the record's. The mutex is there all the same, and retires
// to the record.
TEST_F(LockReportFault, AMutexThatCouldNotBeRecordedIsMissingUntilItRetires) {
    QXHandle mutex = QX_INVALID_HANDLE;
    for (int n = 1; mutex == QX_INVALID_HANDLE; ++n) {
        FailAllocation(n);
        const QXResult result = QXMutexCreate(kLongName, QX_MUTEX_STATS, &mutex);
        ASSERT_TRUE(AllocationHasFailed());
        FailAllocation(0);
        EXPECT_EQ(mutex == QX_INVALID_HANDLE ? QX_E_OUTOFMEMORY : QX_S_OK, result);
    }
    Hold(mutex);
    EXPECT_EQ(QX_S_OK, Dump());
    EXPECT_EQ(std::string::npos, Text().find("QX_MUTEX:"));
    EXPECT_EQ(QX_S_OK, QXMutexDestroy(mutex));
    EXPECT_EQ(QX_S_OK, Dump());
    EXPECT_NE(std::string::npos, Text().find("QX_DEL_MUTEX:"));
}

}  // namespace

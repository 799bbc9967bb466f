#include <gtest/gtest.h>
#include <qxcore/lockstats.h>
#include <qxcore/mutex.h>

#include <thread>

namespace {

class Mutex {
  public:
    explicit Mutex(uint32_t flags = 0) {
        EXPECT_EQ(QX_S_OK, QXMutexCreate("test", flags, &m_handle));
    }
    ~Mutex() { EXPECT_EQ(0, QXMutexDestroy(m_handle)); }
    operator QXHandle() const { return m_handle; }

  private:
    QXHandle m_handle = nullptr;
};

QXResult TryInAnotherThread(QXHandle mutex) {
    QXResult result = QX_E_NOTIMPL;
    std::thread([&] {
        result = QXMutexTryAcquire(mutex);
        if (QX_SUCCEEDED(result)) {
            QXMutexRelease(mutex);
        }
    }).join();
    return result;
}

TEST(Mutex, RecursesDeeperThanSixteenBits) {
    constexpr int kDepth = 70000;
    const Mutex mutex;
    for (int depth = 0; depth < kDepth; ++depth) {
        ASSERT_EQ(QX_S_OK, depth % 2 != 0 ? QXMutexTryAcquire(mutex) : QXMutexAcquire(mutex));
    }
    for (int depth = 1; depth < kDepth; ++depth) {
        ASSERT_EQ(QX_S_OK, QXMutexRelease(mutex));
    }
    EXPECT_EQ(QX_E_FAIL, TryInAnotherThread(mutex));
    EXPECT_EQ(QX_S_OK, QXMutexRelease(mutex));
    EXPECT_EQ(QX_S_OK, TryInAnotherThread(mutex));
}

TEST(Mutex, ReleaseByAStrangerIsNeitherRefusedNorReported) {
    const Mutex mutex;
    EXPECT_EQ(QX_S_OK, QXMutexRelease(mutex));
    EXPECT_EQ(QX_S_OK, TryInAnotherThread(mutex));
    QXMutexAcquire(mutex);
    std::thread([&] { EXPECT_EQ(QX_S_OK, QXMutexRelease(mutex)); }).join();
    EXPECT_EQ(QX_S_OK, TryInAnotherThread(mutex));
}

TEST(Mutex, FlagsDecideTheKind) {
    struct Row {
        uint32_t flags;
        QXResult stats;
        int32_t claimed;  // the answer to one who claims to hold it and does not
    };
    constexpr Row kRows[] = {
        {0, QX_E_NOTIMPL, 1},
        {QX_MUTEX_SPIN | QX_MUTEX_NONRECURSIVE | 0x01, QX_E_NOTIMPL, 1},
        {QX_MUTEX_STATS | QX_MUTEX_NOSTATS, QX_E_NOTIMPL, 1},
        {QX_MUTEX_STATS, QX_S_OK, 1},
        {QX_MUTEX_CHECKED | QX_MUTEX_STATS | QX_MUTEX_NOSTATS, QX_S_OK, 0},
    };
    for (const Row& row : kRows) {
        QXHandle mutex = nullptr;
        EXPECT_EQ(QX_S_OK, QXMutexCreate(nullptr, row.flags, &mutex)) << row.flags;
        QXLockStats stats;
        EXPECT_EQ(row.stats, QXGetLockStats(mutex, &stats)) << row.flags;
        EXPECT_EQ(1, QXMutexAssertOwnership(mutex, 0));
        EXPECT_EQ(row.claimed, QXMutexAssertOwnership(mutex, 1));
        EXPECT_NE(nullptr, QXMutexGetOSMutex(mutex));
        EXPECT_NE(mutex, QXMutexGetOSMutex(mutex));
        EXPECT_EQ(0, QXMutexDestroy(mutex));
    }
}

}  // namespace

#include <gtest/gtest.h>
#include <qxcore/lockstats.h>
#include <qxcore/mutex.h>

#include <thread>

namespace {

TEST(Mutex, RecursesDeeperThanSixteenBits) {
    constexpr int kDepth = 70000;
    QXHandle mutex = nullptr;
    ASSERT_EQ(QX_S_OK, QXMutexCreate("test", 0, &mutex));
    for (int depth = 0; depth < kDepth; ++depth) {
        ASSERT_EQ(QX_S_OK, depth % 2 != 0 ? QXMutexTryAcquire(mutex) : QXMutexAcquire(mutex));
    }
    for (int depth = kDepth; depth > 0; --depth) {
        if (depth == 1) {
            std::thread([&] { EXPECT_EQ(QX_E_FAIL, QXMutexTryAcquire(mutex)); }).join();
        }
        ASSERT_EQ(QX_S_OK, QXMutexRelease(mutex));
    }
    std::thread([&] {
        EXPECT_EQ(QX_S_OK, QXMutexTryAcquire(mutex));
        QXMutexRelease(mutex);
    }).join();
    EXPECT_EQ(0, QXMutexDestroy(mutex));
}

TEST(Mutex, FlagsDecideTheKind) {
    struct Row {
        uint32_t flags;
        QXResult stats;
        int32_t claimed;  // the answer to one who claims to hold it and does not
    };
    for (const Row& row : {Row{QX_MUTEX_SPIN | QX_MUTEX_NONRECURSIVE | 0x01, QX_E_NOTIMPL, 1},
                           {QX_MUTEX_STATS | QX_MUTEX_NOSTATS, QX_E_NOTIMPL, 1},
                           {QX_MUTEX_STATS, QX_S_OK, 1},
                           {QX_MUTEX_CHECKED | QX_MUTEX_STATS | QX_MUTEX_NOSTATS, QX_S_OK, 0}}) {
        QXHandle mutex = nullptr;
        ASSERT_EQ(QX_S_OK, QXMutexCreate(nullptr, row.flags, &mutex));
        QXLockStats stats{1, 2, 3, 4, 5, 6, 7};
        EXPECT_EQ(row.stats, QXGetLockStats(mutex, &stats)) << row.flags;
        EXPECT_EQ(row.stats == QX_S_OK ? 0 : 1,
                  stats.maxAcquireTime);  // refused, it is not touched
        EXPECT_EQ(1, QXMutexAssertOwnership(mutex, 0));
        EXPECT_EQ(row.claimed, QXMutexAssertOwnership(mutex, 1));
        EXPECT_NE(nullptr, QXMutexGetOSMutex(mutex));
        EXPECT_NE(mutex, QXMutexGetOSMutex(mutex));
        EXPECT_EQ(0, QXMutexDestroy(mutex));
    }
}

}  // namespace

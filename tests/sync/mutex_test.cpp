// Mutexes of every kind, those that verify their use included.
#include <gtest/gtest.h>
#include <qxcore/lockstats.h>
#include <qxcore/mutex.h>

#include <string>
#include <thread>

namespace {

constexpr uint32_t kSingle = QX_MUTEX_CHECKED | QX_MUTEX_NONRECURSIVE;

class Mutex {
  public:
    explicit Mutex(uint32_t flags = 0) {
        EXPECT_EQ(QX_S_OK, QXMutexCreate("test", flags, &m_handle)) << flags;
    }
    ~Mutex() { EXPECT_EQ(0, QXMutexDestroy(m_handle)); }
    operator QXHandle() const { return m_handle; }

  private:
    QXHandle m_handle = nullptr;
};

QXResult Elsewhere(QXResult (*operation)(QXHandle), QXHandle mutex) {
    QXResult result = QX_E_NOTIMPL;
    std::thread([&] { result = operation(mutex); }).join();
    return result;
}

QXResult TryAndRelease(QXHandle mutex) {
    const QXResult result = QXMutexTryAcquire(mutex);
    return QX_SUCCEEDED(result) ? QXMutexRelease(mutex) : result;
}

// A and T acquire and try to acquire, R releases; in another thread t tries and r releases.
QXResult Do(char step, QXHandle mutex) {
    switch (step) {
        case 'A':
            return QXMutexAcquire(mutex);
        case 'T':
            return QXMutexTryAcquire(mutex);
        case 'R':
            return QXMutexRelease(mutex);
        case 't':
            return Elsewhere(TryAndRelease, mutex);
        default:
            return Elsewhere(QXMutexRelease, mutex);
    }
}

// With `!` behind it a step fails.
TEST(Mutex, RefusesWhatItsFlagsForbid) {
    struct Row {
        uint32_t flags;
        const char* steps;
    };
    for (const Row& row : {Row{0, "RtArt"},  // a stranger's release is not even reported
                           {QX_MUTEX_STATS, "AArt!Rt"},
                           {QX_MUTEX_NONRECURSIVE | QX_MUTEX_STATS, "AARR"},
                           {QX_MUTEX_CHECKED, "R!tAr!t!RtR!"},
                           {QX_MUTEX_CHECKED | QX_MUTEX_STATS, "ATARRt!RtR!"},
                           {kSingle, "AA!T!RtTA!R"}}) {
        const Mutex mutex(row.flags);
        for (const char* step = row.steps; *step != '\0'; ++step) {
            const bool fails = step[1] == '!';
            EXPECT_EQ(fails ? QX_E_FAIL : QX_S_OK, Do(*step, mutex))
                << row.steps << " from " << step;
            step += fails ? 1 : 0;
        }
    }
    QXResetLockStats();
}

TEST(Mutex, RecursesDeeperThanSixteenBits) {
    constexpr int kDepth = 70000;
    const Mutex mutex;
    for (int depth = 0; depth < kDepth; ++depth) {
        ASSERT_EQ(QX_S_OK, Do(depth % 2 != 0 ? 'T' : 'A', mutex));
    }
    for (int depth = 1; depth < kDepth; ++depth) {
        ASSERT_EQ(QX_S_OK, Do('R', mutex));
    }
    EXPECT_EQ(QX_E_FAIL, Do('t', mutex));
    EXPECT_EQ(QX_S_OK, Do('R', mutex));
    EXPECT_EQ(QX_S_OK, Do('t', mutex));
}

// As the width of the depth that is kept for the checks has it.
TEST(Mutex, DepthOfACheckedOneStartsOverAfterSixteenBits) {
    const Mutex mutex(QX_MUTEX_CHECKED);
    for (int depth = 0; depth < 0x10000; ++depth) {
        ASSERT_EQ(QX_S_OK, Do('A', mutex));
    }
    EXPECT_EQ(QX_E_FAIL, Do('R', mutex));
    EXPECT_EQ(QX_S_OK, Do('A', mutex));
    EXPECT_EQ(QX_S_OK, Do('R', mutex));
    EXPECT_EQ(QX_E_FAIL, Do('R', mutex));
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
        const Mutex mutex(row.flags);
        QXLockStats stats;
        EXPECT_EQ(row.stats, QXGetLockStats(mutex, &stats)) << row.flags;
        EXPECT_EQ(1, QXMutexAssertOwnership(mutex, 0));
        EXPECT_EQ(row.claimed, QXMutexAssertOwnership(mutex, 1));
        EXPECT_NE(nullptr, QXMutexGetOSMutex(mutex));
        EXPECT_NE(mutex, QXMutexGetOSMutex(mutex));
    }
}

TEST(Mutex, AssertionHandsBackWhatTheHolderWanted) {
    const Mutex mutex(QX_MUTEX_CHECKED);
    for (const int16_t wanted : {0, 1, -2}) {
        EXPECT_EQ(wanted == 0, QXMutexAssertOwnership(mutex, wanted));
        QXMutexAcquire(mutex);
        EXPECT_EQ(wanted, QXMutexAssertOwnership(mutex, wanted));
        std::thread([&] { EXPECT_EQ(wanted == 0, QXMutexAssertOwnership(mutex, wanted)); }).join();
        QXMutexRelease(mutex);
    }
}

}  // namespace

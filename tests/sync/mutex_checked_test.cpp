// Mutexes that verify their use.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <thread>
#include <vector>

namespace {

constexpr uint32_t kSingle = QX_MUTEX_CHECKED | QX_MUTEX_NONRECURSIVE;

QXResult Take(QXHandle mutex) {
    return QXMutexAcquire(mutex);
}

QXResult Try(QXHandle mutex) {
    return QXMutexTryAcquire(mutex);
}

QXResult Leave(QXHandle mutex) {
    return QXMutexRelease(mutex);
}

QXResult InAnotherThread(QXHandle mutex, QXResult (*operation)(QXHandle)) {
    QXResult result = QX_E_NOTIMPL;
    std::thread([&] { result = operation(mutex); }).join();
    return result;
}

QXResult TryElsewhere(QXHandle mutex) {
    return InAnotherThread(mutex, [](QXHandle handle) {
        const QXResult result = Try(handle);
        return QX_SUCCEEDED(result) ? Leave(handle) : result;
    });
}

QXResult LeaveElsewhere(QXHandle mutex) {
    return InAnotherThread(mutex, Leave);
}

struct Step {
    QXResult (*operation)(QXHandle);
    QXResult result;
};

TEST(CheckedMutex, RefusesWhatItsFlagsForbid) {
    struct Row {
        const char* what;
        uint32_t flags;
        std::vector<Step> steps;
    };
    const Row rows[] = {
        {"release of a free mutex",
         QX_MUTEX_CHECKED,
         {{Leave, QX_E_FAIL}, {TryElsewhere, QX_S_OK}}},
        {"release by a stranger",
         QX_MUTEX_CHECKED,
         {{Take, QX_S_OK},
          {LeaveElsewhere, QX_E_FAIL},
          {TryElsewhere, QX_E_FAIL},
          {Leave, QX_S_OK},
          {TryElsewhere, QX_S_OK},
          {Leave, QX_E_FAIL}}},
        {"recursion that is allowed",
         QX_MUTEX_CHECKED | QX_MUTEX_STATS,
         {{Take, QX_S_OK},
          {Try, QX_S_OK},
          {Take, QX_S_OK},
          {Leave, QX_S_OK},
          {Leave, QX_S_OK},
          {TryElsewhere, QX_E_FAIL},
          {Leave, QX_S_OK},
          {TryElsewhere, QX_S_OK},
          {Leave, QX_E_FAIL}}},
        {"recursion that is not",
         kSingle,
         {{Take, QX_S_OK},
          {Take, QX_E_FAIL},
          {Try, QX_E_FAIL},
          {Leave, QX_S_OK},
          {TryElsewhere, QX_S_OK},
          {Try, QX_S_OK},
          {Take, QX_E_FAIL},
          {Leave, QX_S_OK}}},
        {"recursion without the checks",
         QX_MUTEX_NONRECURSIVE | QX_MUTEX_STATS,
         {{Take, QX_S_OK}, {Take, QX_S_OK}, {Leave, QX_S_OK}, {Leave, QX_S_OK}}},
        {"release by a stranger without the checks",
         QX_MUTEX_STATS,
         {{Take, QX_S_OK}, {LeaveElsewhere, QX_S_OK}, {TryElsewhere, QX_S_OK}}},
    };
    for (const Row& row : rows) {
        QXHandle mutex = nullptr;
        ASSERT_EQ(QX_S_OK, QXMutexCreate(row.what, row.flags, &mutex));
        for (size_t step = 0; step < row.steps.size(); ++step) {
            EXPECT_EQ(row.steps[step].result, row.steps[step].operation(mutex))
                << row.what << ", step " << step;
        }
        EXPECT_EQ(QX_S_OK, QXMutexDestroy(mutex)) << row.what;
    }
    QXResetLockStats();
}

TEST(CheckedMutex, AssertionHandsBackWhatTheHolderWanted) {
    QXHandle mutex = nullptr;
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED, &mutex));
    for (const int16_t wanted : {int16_t{0}, int16_t{1}, int16_t{7}, int16_t{-2}}) {
        EXPECT_EQ(wanted == 0, QXMutexAssertOwnership(mutex, wanted));
        QXMutexAcquire(mutex);
        EXPECT_EQ(wanted, QXMutexAssertOwnership(mutex, wanted));
        std::thread([&] { EXPECT_EQ(wanted == 0, QXMutexAssertOwnership(mutex, wanted)); }).join();
        QXMutexRelease(mutex);
    }
    EXPECT_EQ(0, QXMutexDestroy(mutex));
}

// As the depth's width has it.
TEST(CheckedMutex, DepthStartsOverAfterSixteenBits) {
    QXHandle mutex = nullptr;
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED, &mutex));
    for (int depth = 0; depth < 0x10000; ++depth) {
        ASSERT_EQ(QX_S_OK, QXMutexAcquire(mutex));
    }
    EXPECT_EQ(QX_E_FAIL, QXMutexRelease(mutex));
    EXPECT_EQ(QX_S_OK, QXMutexAcquire(mutex));
    EXPECT_EQ(QX_S_OK, QXMutexRelease(mutex));
    EXPECT_EQ(QX_E_FAIL, QXMutexRelease(mutex));
    EXPECT_EQ(QX_S_OK, QXMutexDestroy(mutex));
}

}  // namespace

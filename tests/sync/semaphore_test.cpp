#include <gtest/gtest.h>
#include <qxcore/semaphore.h>

#include <atomic>
#include <thread>

namespace {

constexpr uint32_t kMaximum = 32767;

QXHandle MakeSemaphore(uint32_t count) {
    QXHandle semaphore = nullptr;
    EXPECT_EQ(QX_S_OK, QXSemaphoreCreate(count, nullptr, 0, &semaphore));
    return semaphore;
}

TEST(Semaphore, CountsFromItsInitialCountToItsMaximum) {
    for (const uint32_t count : {0u, 2u, kMaximum}) {
        const QXHandle semaphore = MakeSemaphore(count);
        EXPECT_EQ(count == kMaximum ? QX_E_FAIL : QX_S_OK, QXSemaphorePost(semaphore));
        const uint32_t now = count == kMaximum ? count : count + 1;
        for (uint32_t taken = 0; taken < now; ++taken) {
            ASSERT_EQ(QX_S_OK,
                      taken % 2 ? QXSemaphoreWait(semaphore) : QXSemaphoreTryWait(semaphore));
        }
        EXPECT_EQ(QX_E_FAIL, QXSemaphoreTryWait(semaphore));
        uint32_t value = 0;
        EXPECT_EQ(QX_S_OK, QXSemaphoreGetValue(semaphore, &value));
        EXPECT_EQ(0xFFFFFFFF, value);
        EXPECT_EQ(QX_S_OK, QXSemaphoreDestroy(semaphore));
    }
}

TEST(Semaphore, ACountBeyondTheMaximumIsRefused) {
    for (const uint32_t count : {kMaximum + 1, 0x80000000, 0xFFFFFFFF}) {
        QXHandle semaphore = nullptr;
        EXPECT_EQ(QX_E_FAIL, QXSemaphoreCreate(count, "s", 0, &semaphore));
        EXPECT_EQ(QX_INVALID_HANDLE, semaphore);
    }
    EXPECT_EQ(QX_S_OK, QXSemaphoreDestroy(nullptr));
}

TEST(Semaphore, TwoThreadsHandTheProcessorToEachOther) {
    constexpr int kRounds = 2000;
    const QXHandle there = MakeSemaphore(0);
    const QXHandle back = MakeSemaphore(0);
    int turns = 0;
    std::thread other([&] {
        for (int round = 0; round < kRounds; ++round) {
            QXSemaphoreWait(there);
            ++turns;
            QXSemaphorePost(back);
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        ASSERT_EQ(2 * round, turns);
        ++turns;
        QXSemaphorePost(there);
        QXSemaphoreWait(back);
    }
    other.join();
    EXPECT_EQ(QX_S_OK, QXSemaphoreDestroy(there));
    EXPECT_EQ(QX_S_OK, QXSemaphoreDestroy(back));
}

}  // namespace

#include <gtest/gtest.h>
#include <qxcore/semaphore.h>

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

}  // namespace

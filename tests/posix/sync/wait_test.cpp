// Waits where forks and signals come between.
#include <gtest/gtest.h>
#include <pthread.h>
#include <qxcore/condition.h>
#include <qxcore/event.h>
#include <qxcore/semaphore.h>
#include <signal.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <thread>

#include "posix/support/forked_child.h"
#include "support/blocked_call.h"

namespace {

TEST(Waits, AForkedChildHasTheCountsAndNotTheWaiters) {
    QXHandle event = nullptr;
    QXHandle semaphore = nullptr;
    QXEventCreate("e", 0, &event);
    QXSemaphoreCreate(0, "s", 0, &semaphore);
    {
        BlockedCall first([&] { return QXEventWait(event); });
        BlockedCall second([&] { return QXSemaphoreWait(semaphore); });
        ForkedChild child([&] {
            QXEventSignal(event);
            QXSemaphorePost(semaphore);
            const bool kept =
                QXEventTimedWait(event, 0) == QX_S_OK && QXSemaphoreTryWait(semaphore) == QX_S_OK;
            return kept && QXEventTimedWait(event, 1) == QX_E_TIMEOUT ? 0 : 1;
        });
        EXPECT_EQ(0, child.Wait());
        EXPECT_FALSE(first.HasReturned() || second.HasReturned());
        QXEventSignal(event);
        QXSemaphorePost(semaphore);
        EXPECT_EQ(QX_S_OK, first.Result());
        EXPECT_EQ(QX_S_OK, second.Result());
    }
    QXEventDestroy(event);
    QXSemaphoreDestroy(semaphore);
}

TEST(Waits, HandledSignalsDoNotShortenATimedWait) {
    using std::chrono::steady_clock;
    constexpr auto kWait = std::chrono::milliseconds(50);
    struct sigaction action = {};
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);
    QXHandle event = nullptr;
    QXHandle condition = nullptr;
    QXEventCreate("e", 0, &event);
    QXConditionCreate("c", 0, &condition);
    QXConditionAcquire(condition);
    std::atomic<bool> stop{false};
    std::thread sender([&, target = pthread_self()] {
        while (!stop) {
            pthread_kill(target, SIGUSR1);
            std::this_thread::yield();
        }
    });
    errno = 77;
    for (const auto wait : {QXEventTimedWait, QXConditionTimedWait}) {
        const auto begin = steady_clock::now();
        EXPECT_EQ(QX_E_TIMEOUT, wait(wait == QXEventTimedWait ? event : condition, 50));
        EXPECT_GE(steady_clock::now() - begin, kWait);
    }
    EXPECT_EQ(77, errno);
    stop = true;
    sender.join();
    QXConditionRelease(condition);
    QXConditionDestroy(condition);
    QXEventDestroy(event);
}

}  // namespace

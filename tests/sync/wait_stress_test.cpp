// Locks and waiting objects under more threads than there are processors, with random timing. A
// wake-up that is lost is a test that does not end.
#include <gtest/gtest.h>
#include <qxcore/condition.h>
#include <qxcore/event.h>
#include <qxcore/mutex.h>
#include <qxcore/rwlock.h>
#include <qxcore/semaphore.h>

#include <atomic>
#include <functional>
#include <random>
#include <thread>
#include <vector>

namespace {

const int kThreads = static_cast<int>(2 * std::thread::hardware_concurrency() + 2);

// A thread's own sequence of chances.
class Chance {
  public:
    explicit Chance(int seed) : m_engine(static_cast<unsigned>(seed) + 1) {}

    int Below(int limit) { return static_cast<int>(m_engine() % static_cast<unsigned>(limit)); }

    // Passes a little time, now and then with the processor given away.
    void Dawdle() {
        for (std::atomic<int> left{Below(200)}; left > 0; --left) {
        }
        if (Below(8) == 0) {
            std::this_thread::yield();
        }
    }

  private:
    std::minstd_rand m_engine;
};

// Runs the body in several threads at once and waits for all.
void InThreads(int count, const std::function<void(int index, Chance&)>& body) {
    std::vector<std::thread> threads;
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&body, index] {
            Chance chance(index);
            body(index, chance);
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

void AwaitCount(const std::atomic<int>& count, int wanted) {
    while (count < wanted) {
        std::this_thread::yield();
    }
}

TEST(WaitStress, AMutexHoldsOneThread) {
    constexpr int kRounds = 5000;
    for (const uint32_t flags : {0u, QX_MUTEX_SPIN}) {
        QXHandle mutex = nullptr;
        ASSERT_EQ(QX_S_OK, QXMutexCreate("m", flags, &mutex));
        int inside = 0;
        long total = 0;
        InThreads(kThreads, [&](int, Chance& chance) {
            for (int round = 0; round < kRounds; ++round) {
                if (chance.Below(3) != 0 || QX_FAILED(QXMutexTryAcquire(mutex))) {
                    QXMutexAcquire(mutex);
                }
                EXPECT_EQ(1, ++inside);
                ++total;
                chance.Dawdle();
                --inside;
                QXMutexRelease(mutex);
            }
        });
        EXPECT_EQ(long{kThreads} * kRounds, total);
        QXMutexDestroy(mutex);
    }
}

TEST(WaitStress, ASemaphoreLetsThroughAsManyAsItCounts) {
    constexpr int kRounds = 10000;
    constexpr int kCount = 2;
    QXHandle semaphore = nullptr;
    ASSERT_EQ(QX_S_OK, QXSemaphoreCreate(kCount, "s", 0, &semaphore));
    std::atomic<int> inside{0};
    InThreads(kThreads, [&](int, Chance& chance) {
        for (int round = 0; round < kRounds; ++round) {
            if (chance.Below(3) != 0 || QX_FAILED(QXSemaphoreTryWait(semaphore))) {
                EXPECT_EQ(QX_S_OK, QXSemaphoreWait(semaphore));
            }
            EXPECT_LE(++inside, kCount);
            chance.Dawdle();
            --inside;
            EXPECT_EQ(QX_S_OK, QXSemaphorePost(semaphore));
        }
    });
    for (int count = 0; count < kCount; ++count) {
        EXPECT_EQ(QX_S_OK, QXSemaphoreTryWait(semaphore));
    }
    EXPECT_EQ(QX_E_FAIL, QXSemaphoreTryWait(semaphore));
    QXSemaphoreDestroy(semaphore);
}

// Half of the threads wait as long as it takes, half up to a time that races with the signal.
TEST(WaitStress, EachSignalOfAnEventEndsOneWait) {
    constexpr int kSignals = 20000;
    QXHandle event = nullptr;
    ASSERT_EQ(QX_S_OK, QXEventCreate("e", 0, &event));
    std::atomic<int> taken{0};
    std::atomic<int> gone{0};
    std::atomic<bool> stop{false};
    InThreads(kThreads, [&](int index, Chance& chance) {
        if (index == 0) {
            for (int signal = 1; signal <= kSignals; ++signal) {
                QXEventSignal(event);
                AwaitCount(taken, signal);
                EXPECT_EQ(signal, taken);
                chance.Dawdle();
            }
            stop = true;
            while (gone < kThreads - 1) {
                QXEventSignal(event);
                std::this_thread::yield();
            }
            return;
        }
        while (!stop) {
            const uint32_t ms = static_cast<uint32_t>(chance.Below(3));
            const QXResult result =
                index % 2 == 0 ? QXEventWait(event) : QXEventTimedWait(event, ms);
            taken += result == QX_S_OK && !stop ? 1 : 0;
        }
        ++gone;
    });
    QXEventDestroy(event);
}

TEST(WaitStress, AGateThatOpensAndClosesLetsAllThroughWhoWaitBefore) {
    constexpr int kRounds = 500;
    QXHandle gate = nullptr;
    ASSERT_EQ(QX_S_OK, QXGateCreate("g", 0, &gate));
    std::atomic<int> passed{0};
    std::atomic<bool> stop{false};
    InThreads(kThreads, [&](int index, Chance& chance) {
        if (index == 0) {
            for (int round = 0; round < kRounds; ++round) {
                QXGateOpen(gate);
                QXGateClose(gate);
                chance.Dawdle();
            }
            stop = true;
            QXGateOpen(gate);
            return;
        }
        while (!stop) {
            const uint32_t ms = static_cast<uint32_t>(chance.Below(2));
            passed += (index % 2 == 0 ? QXGateWait(gate) : QXGateTimedWait(gate, ms)) == QX_S_OK;
        }
    });
    EXPECT_GE(passed, 1);
    QXGateDestroy(gate);
}

// Whoever's time runs out goes away without a look. Had it swallowed a signal, an item would be
// left and the others asleep.
TEST(WaitStress, AConditionsSignalIsNotSwallowedByAWaitThatRunsOut) {
    constexpr int kItems = 20000;
    QXHandle condition = nullptr;
    ASSERT_EQ(QX_S_OK, QXConditionCreate("c", 0, &condition));
    int items = 0;
    bool closed = false;
    std::atomic<int> consumed{0};
    const auto produce = [&](Chance& chance) {
        for (int item = 0; item < kItems; ++item) {
            const bool signalInside = chance.Below(2) == 0;
            QXConditionAcquire(condition);
            ++items;
            if (signalInside) {
                QXConditionSignal(condition);
            }
            QXConditionRelease(condition);
            if (!signalInside) {
                QXConditionSignal(condition);
            }
            chance.Dawdle();
        }
        AwaitCount(consumed, kItems);
        QXConditionAcquire(condition);
        closed = true;
        QXConditionBroadcast(condition);
        QXConditionRelease(condition);
    };
    const auto wait = [&](bool patient, Chance& chance) {
        return patient ? QXConditionWait(condition)
                       : QXConditionTimedWait(condition, static_cast<uint32_t>(chance.Below(2)));
    };
    InThreads(kThreads, [&](int index, Chance& chance) {
        if (index == 0) {
            return produce(chance);
        }
        for (bool open = true; open;) {
            QXConditionAcquire(condition);
            QXResult result = QX_S_OK;
            while (items == 0 && !closed && result == QX_S_OK) {
                result = wait(index % 2 != 0, chance);
            }
            if (result == QX_S_OK && items > 0) {
                --items;
                ++consumed;
            }
            open = !closed;
            QXConditionRelease(condition);
            chance.Dawdle();
        }
    });
    EXPECT_EQ(kItems, consumed);
    EXPECT_EQ(0, items);
    QXConditionDestroy(condition);
}

class SharedValue {
  public:
    SharedValue() { EXPECT_EQ(QX_S_OK, QXRWLockCreate("rw", 0, &m_lock)); }
    ~SharedValue() { EXPECT_EQ(QX_S_OK, QXRWLockDestroy(m_lock)); }

    bool Read(Chance& chance) {
        const bool tries = chance.Below(3) == 0;
        if (QX_FAILED(tries ? QXRWLockTryAcquireRead(m_lock) : QXRWLockAcquireRead(m_lock))) {
            return false;
        }
        ++m_readers;
        EXPECT_EQ(0, m_writers);
        const long before = m_value;
        const bool again = chance.Below(2) == 0 && QX_SUCCEEDED(QXRWLockAcquireRead(m_lock));
        chance.Dawdle();
        EXPECT_EQ(before, m_value);
        --m_readers;
        EXPECT_TRUE(!again || QX_SUCCEEDED(QXRWLockReleaseRead(m_lock)));
        EXPECT_EQ(QX_S_OK, QXRWLockReleaseRead(m_lock));
        return true;
    }

    bool Write(Chance& chance) {
        const bool tries = chance.Below(3) == 0;
        if (QX_FAILED(tries ? QXRWLockTryAcquireWrite(m_lock) : QXRWLockAcquireWrite(m_lock))) {
            return false;
        }
        EXPECT_EQ(1, ++m_writers);
        EXPECT_EQ(0, m_readers);
        ++m_value;
        const bool reads = chance.Below(2) == 0 && QX_SUCCEEDED(QXRWLockAcquireRead(m_lock));
        chance.Dawdle();
        EXPECT_TRUE(!reads || QX_SUCCEEDED(QXRWLockReleaseRead(m_lock)));
        --m_writers;
        EXPECT_EQ(QX_S_OK, QXRWLockReleaseWrite(m_lock));
        return true;
    }

    long Value() const { return m_value; }

  private:
    QXHandle m_lock = nullptr;
    std::atomic<int> m_readers{0};
    std::atomic<int> m_writers{0};
    long m_value = 0;
};

TEST(WaitStress, AReaderWriterLockHoldsReadersOrOneWriter) {
    constexpr int kRounds = 10000;
    SharedValue value;
    std::atomic<long> written{0};
    InThreads(kThreads, [&](int, Chance& chance) {
        for (int round = 0; round < kRounds; ++round) {
            if (chance.Below(4) != 0) {
                value.Read(chance);
            } else {
                written += value.Write(chance) ? 1 : 0;
            }
        }
    });
    EXPECT_EQ(written, value.Value());
}

// The object ends the moment that its waiter is released, with the signalling thread still in its
// call.
TEST(WaitStress, WhoeverIsReleasedMayDestroyTheObjectAtOnce) {
    constexpr int kRounds = 1000;
    InThreads(3, [](int index, Chance& chance) {
        for (int round = 0; round < kRounds; ++round) {
            QXHandle object = nullptr;
            bool ready = false;
            if (index == 0) {
                QXEventCreate("e", round % 2 != 0 ? QX_EVENT_MANUALRESET : 0, &object);
            } else if (index == 1) {
                QXSemaphoreCreate(0, "s", 0, &object);
            } else {
                QXConditionCreate("c", 0, &object);
            }
            std::thread waiter([&] {
                if (index == 0) {
                    QXEventWait(object);
                    QXEventDestroy(object);
                } else if (index == 1) {
                    QXSemaphoreWait(object);
                    QXSemaphoreDestroy(object);
                } else {
                    QXConditionAcquire(object);
                    while (!ready) {
                        QXConditionWait(object);
                    }
                    QXConditionRelease(object);
                    QXConditionDestroy(object);
                }
            });
            chance.Dawdle();
            if (index == 0) {
                QXEventSignal(object);
            } else if (index == 1) {
                QXSemaphorePost(object);
            } else {
                QXConditionAcquire(object);
                ready = true;
                QXConditionSignal(object);
                QXConditionRelease(object);
            }
            waiter.join();
        }
    });
}

}  // namespace

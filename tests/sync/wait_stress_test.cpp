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

// No more than so many are inside at once. One alone may change what is not atomic.
void Compete(QXHandle object, QXResult take(QXHandle), QXResult tryToTake(QXHandle),
             QXResult leave(QXHandle), int mostInside) {
    constexpr int kRounds = 5000;
    std::atomic<int> inside{0};
    int alone = 0;
    InThreads(kThreads, [&](int, Chance& chance) {
        for (int round = 0; round < kRounds; ++round) {
            if (chance.Below(3) != 0 || QX_FAILED(tryToTake(object))) {
                EXPECT_EQ(QX_S_OK, take(object));
            }
            EXPECT_LE(++inside, mostInside);
            if (mostInside == 1) {
                ++alone;
            }
            chance.Dawdle();
            --inside;
            EXPECT_EQ(QX_S_OK, leave(object));
        }
    });
    EXPECT_EQ(mostInside == 1 ? kThreads * kRounds : 0, alone);
}

TEST(WaitStress, AMutexHoldsOneThread) {
    for (const uint32_t flags : {0u, QX_MUTEX_SPIN}) {
        QXHandle mutex = nullptr;
        ASSERT_EQ(QX_S_OK, QXMutexCreate("m", flags, &mutex));
        Compete(mutex, QXMutexAcquire, QXMutexTryAcquire, QXMutexRelease, 1);
        QXMutexDestroy(mutex);
    }
}

TEST(WaitStress, ASemaphoreLetsThroughAsManyAsItCounts) {
    QXHandle semaphore = nullptr;
    ASSERT_EQ(QX_S_OK, QXSemaphoreCreate(2, "s", 0, &semaphore));
    Compete(semaphore, QXSemaphoreWait, QXSemaphoreTryWait, QXSemaphorePost, 2);
    EXPECT_EQ(QX_S_OK, QXSemaphoreTryWait(semaphore));
    EXPECT_EQ(QX_S_OK, QXSemaphoreTryWait(semaphore));
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
    InThreads(kThreads, [&](int index, Chance& chance) {
        if (index == 0) {
            return produce(chance);
        }
        for (bool open = true; open;) {
            QXConditionAcquire(condition);
            QXResult result = QX_S_OK;
            while (items == 0 && !closed && result == QX_S_OK) {
                const uint32_t ms = static_cast<uint32_t>(chance.Below(2));
                result = index % 2 != 0 ? QXConditionWait(condition)
                                        : QXConditionTimedWait(condition, ms);
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

TEST(WaitStress, AReaderWriterLockHoldsReadersOrOneWriter) {
    constexpr int kRounds = 10000;
    QXHandle lock = nullptr;
    ASSERT_EQ(QX_S_OK, QXRWLockCreate("rw", 0, &lock));
    std::atomic<int> readers{0};
    std::atomic<int> writers{0};
    std::atomic<long> written{0};
    long value = 0;
    const auto take = [&](Chance& chance, QXResult acquire(QXHandle), QXResult tryTo(QXHandle)) {
        return QX_SUCCEEDED(chance.Below(3) == 0 ? tryTo(lock) : acquire(lock));
    };
    const auto readAgain = [&](Chance& chance) {
        const bool again = chance.Below(2) == 0 && QX_SUCCEEDED(QXRWLockAcquireRead(lock));
        chance.Dawdle();
        EXPECT_TRUE(!again || QX_SUCCEEDED(QXRWLockReleaseRead(lock)));
    };
    const auto read = [&](Chance& chance) {
        ++readers;
        EXPECT_EQ(0, writers);
        const long before = value;
        readAgain(chance);
        EXPECT_EQ(before, value);
        --readers;
        EXPECT_EQ(QX_S_OK, QXRWLockReleaseRead(lock));
    };
    const auto write = [&](Chance& chance) {
        EXPECT_EQ(1, ++writers);
        EXPECT_EQ(0, readers);
        ++value;
        ++written;
        readAgain(chance);
        --writers;
        EXPECT_EQ(QX_S_OK, QXRWLockReleaseWrite(lock));
    };
    InThreads(kThreads, [&](int, Chance& chance) {
        for (int round = 0; round < kRounds; ++round) {
            if (chance.Below(4) != 0) {
                if (take(chance, QXRWLockAcquireRead, QXRWLockTryAcquireRead)) {
                    read(chance);
                }
            } else if (take(chance, QXRWLockAcquireWrite, QXRWLockTryAcquireWrite)) {
                write(chance);
            }
        }
    });
    EXPECT_EQ(written, value);
    EXPECT_EQ(QX_S_OK, QXRWLockDestroy(lock));
}

// The object ends the moment that its waiter is released, with the signalling thread still in its
// call.
TEST(WaitStress, WhoeverIsReleasedMayDestroyTheObjectAtOnce) {
    static bool s_ready;  // of the condition
    struct Kind {
        QXResult (*create)(QXHandle*);
        QXResult (*signal)(QXHandle), (*wait)(QXHandle), (*destroy)(QXHandle);
    };
    const Kind kKinds[] = {{[](QXHandle* out) { return QXEventCreate("e", 0, out); }, QXEventSignal,
                            QXEventWait, QXEventDestroy},
                           {[](QXHandle* out) { return QXGateCreate("g", 0, out); }, QXGateOpen,
                            QXGateWait, QXGateDestroy},
                           {[](QXHandle* out) { return QXSemaphoreCreate(0, "s", 0, out); },
                            QXSemaphorePost, QXSemaphoreWait, QXSemaphoreDestroy},
                           {[](QXHandle* out) {
                                s_ready = false;
                                return QXConditionCreate("c", 0, out);
                            },
                            [](QXHandle condition) {
                                QXConditionAcquire(condition);
                                s_ready = true;
                                QXConditionSignal(condition);
                                return QXConditionRelease(condition);
                            },
                            [](QXHandle condition) {
                                QXConditionAcquire(condition);
                                while (!s_ready) {
                                    QXConditionWait(condition);
                                }
                                return QXConditionRelease(condition);
                            },
                            QXConditionDestroy}};
    InThreads(4, [&](int index, Chance& chance) {
        const Kind& kind = kKinds[index];
        for (int round = 0; round < 1000; ++round) {
            QXHandle object = nullptr;
            EXPECT_EQ(QX_S_OK, kind.create(&object));
            std::thread waiter([&] {
                kind.wait(object);
                kind.destroy(object);
            });
            chance.Dawdle();
            kind.signal(object);
            waiter.join();
        }
    });
}

}  // namespace

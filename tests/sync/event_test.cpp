// Events, gates and semaphores: what a signal does, and to whom it belongs.
#include <gtest/gtest.h>
#include <qxcore/event.h>
#include <qxcore/semaphore.h>

#include <memory>
#include <thread>
#include <vector>

#include "support/blocked_call.h"

namespace {

// One kind of object, by its functions.
struct Kind {
    const char* name;
    QXResult (*create)(QXHandle*);
    QXResult (*destroy)(QXHandle);
    QXResult (*signal)(QXHandle);
    QXResult (*reset)(QXHandle);
    QXResult (*wait)(QXHandle);
    QXResult (*poll)(QXHandle);
    QXResult busy;  // the answer of a poll without a signal
    bool staysSignalled;
};

QXResult PollEvent(QXHandle event) {
    return QXEventTimedWait(event, 0);
}

QXResult WaitForALongTime(QXHandle event) {
    return QXEventTimedWait(event, 0xFFFFFFFE);
}

const Kind kAutoReset = {"event",        [](QXHandle* out) { return QXEventCreate("e", 1, out); },
                         QXEventDestroy, QXEventSignal,
                         QXEventReset,   QXEventWait,
                         PollEvent,      QX_E_TIMEOUT,
                         false};
const Kind kManualReset = {
    "manual-reset event",
    [](QXHandle* out) { return QXEventCreate(nullptr, QX_EVENT_MANUALRESET, out); },
    QXEventDestroy,
    QXEventSignal,
    QXEventReset,
    WaitForALongTime,
    PollEvent,
    QX_E_TIMEOUT,
    true};
const Kind kGate = {"gate",        [](QXHandle* out) { return QXGateCreate("g", 0, out); },
                    QXGateDestroy, QXGateOpen,
                    QXGateClose,   QXGateWait,
                    QXGateTryWait, QX_E_FAIL,
                    true};
const Kind kSemaphore = {"semaphore",
                         [](QXHandle* out) { return QXSemaphoreCreate(0, "s", 0, out); },
                         QXSemaphoreDestroy,
                         QXSemaphorePost,
                         nullptr,
                         QXSemaphoreWait,
                         QXSemaphoreTryWait,
                         QX_E_FAIL,
                         false};
const Kind* const kKinds[] = {&kAutoReset, &kManualReset, &kGate, &kSemaphore};

class Object {
  public:
    explicit Object(const Kind& kind) : m_kind(kind) { EXPECT_EQ(QX_S_OK, kind.create(&m_handle)); }
    ~Object() { EXPECT_EQ(QX_S_OK, m_kind.destroy(m_handle)); }

    QXResult Signal() const { return m_kind.signal(m_handle); }
    QXResult Reset() const { return m_kind.reset(m_handle); }
    QXResult Wait() const { return m_kind.wait(m_handle); }
    QXResult Poll() const { return m_kind.poll(m_handle); }

    std::vector<std::unique_ptr<BlockedCall>> BlockThreads(int count) const {
        std::vector<std::unique_ptr<BlockedCall>> threads;
        for (int index = 0; index < count; ++index) {
            threads.push_back(std::make_unique<BlockedCall>([this] { return Wait(); }));
        }
        return threads;
    }

  private:
    const Kind& m_kind;
    QXHandle m_handle = nullptr;
};

TEST(WaitingObjects, KeepTheirSignalForOneWaitOrForAll) {
    for (const Kind* kind : kKinds) {
        SCOPED_TRACE(kind->name);
        const Object object(*kind);
        EXPECT_EQ(kind->busy, object.Poll());
        EXPECT_EQ(QX_S_OK, object.Signal());
        EXPECT_EQ(QX_S_OK, object.Wait());
        EXPECT_EQ(kind->staysSignalled ? QX_S_OK : kind->busy, object.Poll());
        if (kind->reset != nullptr) {
            EXPECT_EQ(QX_S_OK, object.Signal());
            EXPECT_EQ(QX_S_OK, object.Signal());
            EXPECT_EQ(QX_S_OK, object.Reset());
            EXPECT_EQ(kind->busy, object.Poll());
            EXPECT_EQ(QX_S_OK, object.Reset());
        }
        EXPECT_EQ(QX_S_OK, kind->destroy(nullptr));
    }
}

TEST(WaitingObjects, EventsSignalledTwiceAreSignalledOnce) {
    const Object event(kAutoReset);
    event.Signal();
    event.Signal();
    EXPECT_EQ(QX_S_OK, event.Poll());
    EXPECT_EQ(QX_E_TIMEOUT, event.Poll());
}

TEST(WaitingObjects, ASignalBelongsToTheWaiterAndNotToTheSignallersPoll) {
    for (const Kind* kind : {&kAutoReset, &kSemaphore}) {
        for (const int waiters : {1, 2, 5}) {
            SCOPED_TRACE(kind->name);
            const Object object(*kind);
            const auto threads = object.BlockThreads(waiters);
            for (int signal = 0; signal < waiters; ++signal) {
                object.Signal();
                EXPECT_EQ(kind->busy, object.Poll());
            }
            for (const auto& thread : threads) {
                EXPECT_EQ(QX_S_OK, thread->Result());
            }
            EXPECT_EQ(kind->busy, object.Poll());
        }
    }
}

TEST(WaitingObjects, TheLongestWaitEndsFirst) {
    for (const Kind* kind : {&kAutoReset, &kSemaphore}) {
        SCOPED_TRACE(kind->name);
        const Object object(*kind);
        const auto threads = object.BlockThreads(3);
        for (int index = 0; index < 3; ++index) {
            object.Signal();
            EXPECT_EQ(QX_S_OK, threads[index]->Result());
            EXPECT_TRUE(index == 2 || !threads[2]->HasReturned());
        }
    }
}

TEST(WaitingObjects, ASignalThatIsResetAtOnceReleasesAllWhoWaited) {
    for (const Kind* kind : {&kManualReset, &kGate}) {
        for (int round = 0; round < 10; ++round) {
            SCOPED_TRACE(kind->name);
            const Object object(*kind);
            const auto threads = object.BlockThreads(3);
            object.Signal();
            object.Reset();
            EXPECT_EQ(kind->busy, object.Poll());
            for (const auto& thread : threads) {
                EXPECT_EQ(QX_S_OK, thread->Result());
            }
        }
    }
}

TEST(WaitingObjects, TimedWaitsRunOutAndLeaveTheSignalToOthers) {
    QXHandle event = nullptr;
    ASSERT_EQ(QX_S_OK, QXEventCreate("e", 0, &event));
    {
        BlockedCall endless([&] { return QXEventWait(event); });
        for (const uint32_t ms : {0u, 1u, 20u}) {
            EXPECT_EQ(QX_E_TIMEOUT, QXEventTimedWait(event, ms));
            EXPECT_EQ(QX_E_TIMEOUT, QXGateTimedWait(event, ms));
        }
        EXPECT_FALSE(endless.HasReturned());
        QXEventSignal(event);
        EXPECT_EQ(QX_S_OK, endless.Result());
    }
    EXPECT_EQ(QX_S_OK, QXEventDestroy(event));
}

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

// Events, gates and semaphores: what a signal does, and to whom it belongs.
#include <gtest/gtest.h>
#include <qxcore/event.h>
#include <qxcore/semaphore.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "support/blocked_call.h"

namespace {

using Operation = QXResult (*)(QXHandle);

// One kind of object, by its functions.
struct Kind {
    const char* name;
    QXResult (*create)(QXHandle*);
    Operation destroy, signal, reset, wait, poll;
    QXResult busy;  // the answer of a poll without a signal
    bool staysSignalled;
};

// clang-format off
const Kind kAutoReset = {
    "event", [](QXHandle* out) { return QXEventCreate("e", 1, out); },
    QXEventDestroy, QXEventSignal, QXEventReset, QXEventWait,
    [](QXHandle event) { return QXEventTimedWait(event, 0); }, QX_E_TIMEOUT, false};
const Kind kManualReset = {
    "manual-reset event", [](QXHandle* out) { return QXEventCreate(nullptr, QX_EVENT_MANUALRESET, out); },
    QXEventDestroy, QXEventSignal, QXEventReset,
    [](QXHandle event) { return QXEventTimedWait(event, 0xFFFFFFFE); },
    [](QXHandle event) { return QXEventTimedWait(event, 0); }, QX_E_TIMEOUT, true};
const Kind kGate = {
    "gate", [](QXHandle* out) { return QXGateCreate("g", 0, out); },
    QXGateDestroy, QXGateOpen, QXGateClose, QXGateWait, QXGateTryWait, QX_E_FAIL, true};
const Kind kSemaphore = {
    "semaphore", [](QXHandle* out) { return QXSemaphoreCreate(0, "s", 0, out); },
    QXSemaphoreDestroy, QXSemaphorePost, nullptr, QXSemaphoreWait, QXSemaphoreTryWait, QX_E_FAIL, false};
// clang-format on

class Object {
  public:
    explicit Object(const Kind& kind) : m_kind(kind) { EXPECT_EQ(QX_S_OK, kind.create(&m_handle)); }
    ~Object() { EXPECT_EQ(QX_S_OK, m_kind.destroy(m_handle)); }

    operator QXHandle() const { return m_handle; }

    QXResult Signal() const { return m_kind.signal(m_handle); }
    QXResult Reset() const { return m_kind.reset(m_handle); }
    QXResult Wait() const { return m_kind.wait(m_handle); }
    QXResult Poll() const { return m_kind.poll(m_handle); }

  private:
    const Kind& m_kind;
    QXHandle m_handle = nullptr;
};

using Threads = std::vector<std::unique_ptr<BlockedCall>>;

Threads BlockThreads(const Object& object, size_t count) {
    Threads threads;
    while (threads.size() < count) {
        threads.push_back(std::make_unique<BlockedCall>([&] { return object.Wait(); }));
    }
    return threads;
}

void ExpectReleased(const Threads& threads) {
    for (const auto& thread : threads) {
        EXPECT_EQ(QX_S_OK, thread->Result());
    }
}

TEST(WaitingObjects, KeepTheirSignalForOneWaitOrForAll) {
    for (const Kind* kind : {&kAutoReset, &kManualReset, &kGate, &kSemaphore}) {
        SCOPED_TRACE(kind->name);
        const Object object(*kind);
        EXPECT_EQ(kind->busy, object.Poll());
        EXPECT_EQ(QX_S_OK, object.Signal());
        EXPECT_EQ(QX_S_OK, object.Wait());
        EXPECT_EQ(kind->staysSignalled ? QX_S_OK : kind->busy, object.Poll());
        if (kind->reset != nullptr) {
            EXPECT_EQ(QX_S_OK, object.Signal());
            EXPECT_EQ(QX_S_OK, object.Signal());
            EXPECT_EQ(QX_S_OK, object.Poll());
            EXPECT_EQ(kind->staysSignalled ? QX_S_OK : kind->busy, object.Poll());
            EXPECT_EQ(QX_S_OK, object.Signal());
            EXPECT_EQ(QX_S_OK, object.Reset());
            EXPECT_EQ(kind->busy, object.Poll());
        }
        EXPECT_EQ(QX_S_OK, kind->destroy(nullptr));
    }
}

TEST(WaitingObjects, ASignalBelongsToTheLongestWaitAndNotToTheSignallersPoll) {
    for (const Kind* kind : {&kAutoReset, &kSemaphore}) {
        SCOPED_TRACE(kind->name);
        const Object object(*kind);
        const Threads threads = BlockThreads(object, 5);
        for (size_t index = 0; index < threads.size(); ++index) {
            object.Signal();
            EXPECT_EQ(kind->busy, object.Poll());
            if (index < 2) {
                EXPECT_EQ(QX_S_OK, threads[index]->Result());
                EXPECT_FALSE(threads.back()->HasReturned());
            }
        }
        ExpectReleased(threads);
        EXPECT_EQ(kind->busy, object.Poll());
    }
}

TEST(WaitingObjects, ASignalThatIsResetAtOnceReleasesAllWhoWaited) {
    for (const Kind* kind : {&kManualReset, &kGate}) {
        for (int round = 0; round < 10; ++round) {
            SCOPED_TRACE(kind->name);
            const Object object(*kind);
            const Threads threads = BlockThreads(object, 3);
            object.Signal();
            object.Reset();
            EXPECT_EQ(kind->busy, object.Poll());
            ExpectReleased(threads);
        }
    }
}

TEST(WaitingObjects, TimedWaitsRunOutAndLeaveTheSignalToOthers) {
    for (const Kind* kind : {&kAutoReset, &kGate}) {
        const Object object(*kind);
        const Threads endless = BlockThreads(object, 1);
        const auto wait = kind == &kGate ? QXGateTimedWait : QXEventTimedWait;
        for (const uint32_t ms : {0, 1, 20}) {
            EXPECT_EQ(QX_E_TIMEOUT, wait(object, ms));
        }
        EXPECT_FALSE(endless[0]->HasReturned());
        object.Signal();
        ExpectReleased(endless);
    }
}

TEST(Semaphore, CountsFromItsInitialCountToItsMaximum) {
    constexpr uint32_t kMaximum = 32767;
    for (const uint32_t count : {2u, kMaximum}) {
        QXHandle semaphore = nullptr;
        ASSERT_EQ(QX_S_OK, QXSemaphoreCreate(count, nullptr, 0, &semaphore));
        EXPECT_EQ(count == kMaximum ? QX_E_FAIL : QX_S_OK, QXSemaphorePost(semaphore));
        for (uint32_t taken = 0; taken < std::min(count + 1, kMaximum); ++taken) {
            ASSERT_EQ(QX_S_OK,
                      taken % 2 ? QXSemaphoreWait(semaphore) : QXSemaphoreTryWait(semaphore));
        }
        EXPECT_EQ(QX_E_FAIL, QXSemaphoreTryWait(semaphore));
        uint32_t value = 0;
        EXPECT_EQ(QX_S_OK, QXSemaphoreGetValue(semaphore, &value));
        EXPECT_EQ(0xFFFFFFFF, value);
        EXPECT_EQ(QX_S_OK, QXSemaphoreDestroy(semaphore));
    }
    for (const uint32_t count : {kMaximum + 1, 0xFFFFFFFF}) {
        QXHandle semaphore = nullptr;
        EXPECT_EQ(QX_E_FAIL, QXSemaphoreCreate(count, "s", 0, &semaphore));
        EXPECT_EQ(QX_INVALID_HANDLE, semaphore);
    }
}

}  // namespace

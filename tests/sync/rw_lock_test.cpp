#include <gtest/gtest.h>
#include <qxcore/event.h>
#include <qxcore/rwlock.h>
#include <qxcore/semaphore.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "support/blocked_call.h"

namespace {

class Lock {
  public:
    Lock() { EXPECT_EQ(QX_S_OK, QXRWLockCreate("rw", 7, &m_handle)); }
    ~Lock() { EXPECT_EQ(QX_S_OK, QXRWLockDestroy(m_handle)); }
    operator QXHandle() const { return m_handle; }

  private:
    QXHandle m_handle = nullptr;
};

QXResult InAnotherThread(const std::function<QXResult()>& call) {
    return BlockedCall(call).Result();
}

QXResult TryWrite(QXHandle lock) {
    const QXResult result = QXRWLockTryAcquireWrite(lock);
    if (QX_SUCCEEDED(result)) {
        EXPECT_EQ(QX_S_OK, QXRWLockReleaseWrite(lock));
    }
    return result;
}

QXResult TryRead(QXHandle lock) {
    const QXResult result = QXRWLockTryAcquireRead(lock);
    if (QX_SUCCEEDED(result)) {
        EXPECT_EQ(QX_S_OK, QXRWLockReleaseRead(lock));
    }
    return result;
}

// A reader keeps writers out, since the gate closed behind it: the lock had counted nobody.
bool CountsNobody(QXHandle lock) {
    QXRWLockAcquireRead(lock);
    const QXResult writer = InAnotherThread([&] { return TryWrite(lock); });
    QXRWLockReleaseRead(lock);
    return writer == QX_E_FAIL;
}

// R and W acquire, T and V try to acquire, r and w release a read and a write hold. With `!` behind
// it the call fails.
QXResult Do(char step, QXHandle lock) {
    switch (step) {
        case 'R':
            return QXRWLockAcquireRead(lock);
        case 'W':
            return QXRWLockAcquireWrite(lock);
        case 'T':
            return QXRWLockTryAcquireRead(lock);
        case 'V':
            return QXRWLockTryAcquireWrite(lock);
        case 'r':
            return QXRWLockReleaseRead(lock);
        default:
            return QXRWLockReleaseWrite(lock);
    }
}

TEST(RWLock, OneThreadsHoldsNestAndEnd) {
    struct Row {
        const char* steps;
        bool countsNobody = true;
    };
    constexpr Row kRows[] = {
        {"r!w!"},          // nothing to release
        {"RRWwrr"},        // an upgrade of the only reader
        {"WWwww!"},        //
        {"WRrw"},          // a read hold inside a write hold
        {"WRwr!", false},  // its release comes too late
        {"RWRrwr"},        // parked holds come and go
        {"RWrwr!"},        // the parked hold was released
        {"RWRwrrr!"},      // more holds behind the upgrade than before
        {"TTVVwwrr"},      // the try forms are as recursive
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(row.steps);
        const Lock lock;
        for (const char* step = row.steps; *step != '\0'; ++step) {
            const bool fails = step[1] == '!';
            EXPECT_EQ(fails ? QX_E_FAIL : QX_S_OK, Do(*step, lock));
            step += fails ? 1 : 0;
        }
        EXPECT_EQ(QX_S_OK, InAnotherThread([&] { return TryWrite(lock); }));
        EXPECT_EQ(row.countsNobody, CountsNobody(lock));
    }
    EXPECT_EQ(QX_S_OK, QXRWLockDestroy(nullptr));
}

TEST(RWLock, ReadersShareAndWritersDoNot) {
    const Lock lock;
    for (const char hold : {'R', 'W', 'R'}) {
        Do(hold, lock);
        EXPECT_EQ(QX_E_FAIL, InAnotherThread([&] { return TryWrite(lock); }));
        EXPECT_EQ(hold == 'R' ? QX_S_OK : QX_E_FAIL,
                  InAnotherThread([&] { return TryRead(lock); }));
        EXPECT_EQ(QX_E_FAIL, InAnotherThread([&] { return QXRWLockReleaseRead(lock); }));
        BlockedCall writer([&] { return Do('W', lock) | Do('w', lock); });
        EXPECT_FALSE(writer.HasReturned());
        EXPECT_EQ(QX_S_OK, hold == 'R' ? Do('r', lock) : Do('w', lock));
        EXPECT_EQ(QX_S_OK, writer.Result());
    }
}

TEST(RWLock, AWaitingWriterKeepsNewReadersOutAndLetsHoldersReadAgain) {
    const Lock lock;
    Do('R', lock);
    BlockedCall writer([&] { return Do('W', lock) | Do('w', lock); });
    BlockedCall reader([&] { return Do('R', lock) | Do('r', lock); });
    EXPECT_EQ(QX_S_OK, Do('R', lock));
    EXPECT_EQ(QX_S_OK, Do('T', lock));
    EXPECT_EQ(QX_E_FAIL, InAnotherThread([&] { return TryRead(lock); }));
    for (int hold = 0; hold < 3; ++hold) {
        EXPECT_FALSE(writer.HasReturned() || reader.HasReturned());
        EXPECT_EQ(QX_S_OK, Do('r', lock));
    }
    EXPECT_EQ(QX_S_OK, writer.Result());
    EXPECT_EQ(QX_S_OK, reader.Result());
    EXPECT_TRUE(CountsNobody(lock));
}

TEST(RWLock, TheCountOfReadersHasNoLimitAndNoOrder) {
    constexpr int kReaders = 20;
    const Lock lock;
    QXHandle leave = nullptr;
    ASSERT_EQ(QX_S_OK, QXSemaphoreCreate(0, nullptr, 0, &leave));
    {
        std::vector<std::unique_ptr<BlockedCall>> readers;
        for (int index = 0; index < kReaders; ++index) {
            readers.push_back(std::make_unique<BlockedCall>(
                [&] { return Do('R', lock) | QXSemaphoreWait(leave) | Do('r', lock); }));
        }
        for (int index = 0; index < kReaders; ++index) {
            EXPECT_EQ(QX_E_FAIL, TryWrite(lock));
            QXSemaphorePost(leave);
            EXPECT_EQ(QX_S_OK, readers[index]->Result());
        }
    }
    EXPECT_EQ(QX_S_OK, TryWrite(lock));
    EXPECT_TRUE(CountsNobody(lock));
    QXSemaphoreDestroy(leave);
}

TEST(RWLock, AnUpgradeWaitsForTheOtherReadersAndLeavesTheGateOpen) {
    const Lock lock;
    QXHandle leave = nullptr;
    ASSERT_EQ(QX_S_OK, QXEventCreate(nullptr, 0, &leave));
    Do('R', lock);
    BlockedCall upgrader([&] {
        const QXResult upgraded = Do('R', lock) | Do('W', lock) | Do('w', lock);
        return upgraded | QXEventWait(leave) | Do('r', lock);
    });
    EXPECT_EQ(QX_S_OK, Do('r', lock));
    // The upgrader writes, goes back to reading, and does not keep this writer out any more.
    EXPECT_EQ(QX_S_OK, Do('W', lock));
    EXPECT_EQ(QX_S_OK, Do('w', lock));
    QXEventSignal(leave);
    EXPECT_EQ(QX_S_OK, upgrader.Result());
    EXPECT_TRUE(CountsNobody(lock));
    QXEventDestroy(leave);
}

TEST(RWLock, ARefusedTryForWritingLeavesNoMark) {
    const Lock lock;
    QXHandle leave = nullptr;
    ASSERT_EQ(QX_S_OK, QXEventCreate(nullptr, 0, &leave));
    Do('R', lock);
    BlockedCall other([&] { return Do('R', lock) | QXEventWait(leave) | Do('r', lock); });
    EXPECT_EQ(QX_E_FAIL, Do('V', lock));
    QXEventSignal(leave);
    EXPECT_EQ(QX_S_OK, other.Result());
    // Had the other reader seen the mark, it would have opened the gate.
    EXPECT_EQ(QX_E_FAIL, InAnotherThread([&] { return TryWrite(lock); }));
    EXPECT_EQ(QX_S_OK, Do('r', lock));
    QXEventDestroy(leave);
}

TEST(RWLock, AStrangersReleaseTakesAParkedHoldOfTheWriter) {
    const Lock lock;
    Do('R', lock);
    Do('W', lock);
    EXPECT_EQ(QX_S_OK, InAnotherThread([&] { return QXRWLockReleaseRead(lock); }));
    EXPECT_EQ(QX_E_FAIL, InAnotherThread([&] { return QXRWLockReleaseRead(lock); }));
    EXPECT_EQ(QX_S_OK, Do('w', lock));
    EXPECT_EQ(QX_E_FAIL, Do('r', lock));
    EXPECT_TRUE(CountsNobody(lock));
}

}  // namespace

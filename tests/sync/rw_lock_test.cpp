#include <gtest/gtest.h>
#include <qxcore/rwlock.h>
#include <qxcore/semaphore.h>

#include <map>
#include <memory>
#include <string_view>
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

QXResult Do(char step, QXHandle lock) {
    static const std::map<char, QXResult (*)(QXHandle)> kSteps = {
        {'R', QXRWLockAcquireRead},     {'W', QXRWLockAcquireWrite}, {'T', QXRWLockTryAcquireRead},
        {'V', QXRWLockTryAcquireWrite}, {'r', QXRWLockReleaseRead},  {'w', QXRWLockReleaseWrite}};
    return kSteps.at(step)(lock);
}

// Up to the first step that fails, whose result this is.
QXResult DoAll(std::string_view steps, QXHandle lock) {
    QXResult result = QX_S_OK;
    for (size_t step = 0; step < steps.size() && QX_SUCCEEDED(result); ++step) {
        result = Do(steps[step], lock);
    }
    return result;
}

QXResult Elsewhere(std::string_view steps, QXHandle lock) {
    return BlockedCall([&] { return DoAll(steps, lock); }).Result();
}

// A reader keeps writers out, since the gate closed behind it: the lock had counted nobody.
bool CountsNobody(QXHandle lock) {
    Do('R', lock);
    const QXResult writer = Elsewhere("Vw", lock);
    Do('r', lock);
    return writer == QX_E_FAIL;
}

// With `!` behind it a step fails.
TEST(RWLock, OneThreadsHoldsNestAndEnd) {
    struct Row {
        const char* steps;
        bool countsNobody = true;
    };
    for (const Row& row : {Row{"r!w!"},        // nothing to release
                           {"RRWwrr"},         // an upgrade of the only reader
                           {"WRrw"},           // a read hold inside a write hold
                           {"WRwr!", false},   // its release comes too late
                           {"RWRrwr"},         // parked holds come and go
                           {"RWrwr!"},         // the parked hold was released
                           {"RWRwrrr!"},       // more holds behind the upgrade than before
                           {"TTVVwwrrw!"}}) {  // the try forms are as recursive
        SCOPED_TRACE(row.steps);
        const Lock lock;
        for (const char* step = row.steps; *step != '\0'; ++step) {
            const bool fails = step[1] == '!';
            EXPECT_EQ(fails ? QX_E_FAIL : QX_S_OK, Do(*step, lock));
            step += fails ? 1 : 0;
        }
        EXPECT_EQ(QX_S_OK, Elsewhere("Vw", lock));
        EXPECT_EQ(row.countsNobody, CountsNobody(lock));
    }
    EXPECT_EQ(QX_S_OK, QXRWLockDestroy(nullptr));
}

TEST(RWLock, ReadersShareAndWritersDoNot) {
    const Lock lock;
    for (const bool reads : {true, false, true}) {
        Do(reads ? 'R' : 'W', lock);
        EXPECT_EQ(QX_E_FAIL, Elsewhere("Vw", lock));
        EXPECT_EQ(reads ? QX_S_OK : QX_E_FAIL, Elsewhere("Tr", lock));
        EXPECT_EQ(QX_E_FAIL, Elsewhere("r", lock));
        BlockedCall writer([&] { return DoAll("Ww", lock); });
        EXPECT_FALSE(writer.HasReturned());
        EXPECT_EQ(QX_S_OK, Do(reads ? 'r' : 'w', lock));
        EXPECT_EQ(QX_S_OK, writer.Result());
    }
}

TEST(RWLock, AWaitingWriterKeepsNewReadersOutAndLetsHoldersReadAgain) {
    const Lock lock;
    Do('R', lock);
    BlockedCall writer([&] { return DoAll("Ww", lock); });
    BlockedCall reader([&] { return DoAll("Rr", lock); });
    EXPECT_EQ(QX_S_OK, DoAll("RT", lock));
    EXPECT_EQ(QX_E_FAIL, Elsewhere("Tr", lock));
    for (int hold = 0; hold < 3; ++hold) {
        EXPECT_FALSE(writer.HasReturned() || reader.HasReturned());
        EXPECT_EQ(QX_S_OK, Do('r', lock));
    }
    EXPECT_EQ(QX_S_OK, writer.Result());
    EXPECT_EQ(QX_S_OK, reader.Result());
    EXPECT_TRUE(CountsNobody(lock));
}

// A thread that takes some steps, sleeps until it shall leave, and takes its last one.
class Other {
  public:
    Other(std::string_view steps, QXHandle lock)
        : m_thread([=, this] {
              const QXResult result = DoAll(steps, lock);
              QXSemaphoreWait(m_leave);
              return QX_SUCCEEDED(result) ? Do('r', lock) : result;
          }) {}
    ~Other() { QXSemaphoreDestroy(m_leave); }

    QXResult Leave() {
        QXSemaphorePost(m_leave);
        return m_thread.Result();
    }

  private:
    QXHandle m_leave = [] {
        QXHandle semaphore = nullptr;
        EXPECT_EQ(QX_S_OK, QXSemaphoreCreate(0, nullptr, 0, &semaphore));
        return semaphore;
    }();
    BlockedCall m_thread;
};

TEST(RWLock, TheCountOfReadersHasNoLimitAndNoOrder) {
    const Lock lock;
    std::vector<std::unique_ptr<Other>> readers;
    while (readers.size() < 20) {
        readers.push_back(std::make_unique<Other>("R", lock));
    }
    for (const auto& reader : readers) {
        EXPECT_EQ(QX_E_FAIL, DoAll("Vw", lock));
        EXPECT_EQ(QX_S_OK, reader->Leave());
    }
    EXPECT_EQ(QX_S_OK, DoAll("Vw", lock));
    EXPECT_TRUE(CountsNobody(lock));
}

TEST(RWLock, AnUpgradeWaitsForTheOtherReadersAndLeavesTheGateOpen) {
    const Lock lock;
    Do('R', lock);
    Other upgrader("RWw", lock);
    EXPECT_EQ(QX_S_OK, Do('r', lock));
    // The upgrader writes, goes back to reading, and does not keep this writer out any more.
    EXPECT_EQ(QX_S_OK, DoAll("Ww", lock));
    EXPECT_EQ(QX_S_OK, upgrader.Leave());
    EXPECT_TRUE(CountsNobody(lock));
}

TEST(RWLock, ARefusedTryForWritingLeavesNoMark) {
    const Lock lock;
    Do('R', lock);
    Other other("R", lock);
    EXPECT_EQ(QX_E_FAIL, Do('V', lock));
    EXPECT_EQ(QX_S_OK, other.Leave());
    // Had the other reader seen the mark, it would have opened the gate.
    EXPECT_EQ(QX_E_FAIL, Elsewhere("Vw", lock));
    EXPECT_EQ(QX_S_OK, Do('r', lock));
}

TEST(RWLock, AStrangersReleaseTakesAParkedHoldOfTheWriter) {
    const Lock lock;
    DoAll("RW", lock);
    EXPECT_EQ(QX_S_OK, Elsewhere("r", lock));
    EXPECT_EQ(QX_E_FAIL, Elsewhere("r", lock));
    EXPECT_EQ(QX_S_OK, Do('w', lock));
    EXPECT_EQ(QX_E_FAIL, Do('r', lock));
    EXPECT_TRUE(CountsNobody(lock));
}

}  // namespace

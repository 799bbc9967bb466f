#include <gtest/gtest.h>
#include <qxcore/condition.h>

#include <memory>
#include <vector>

#include "support/blocked_call.h"

namespace {

class Condition {
  public:
    Condition() { EXPECT_EQ(QX_S_OK, QXConditionCreate("c", 3, &m_handle)); }
    ~Condition() { EXPECT_EQ(QX_S_OK, QXConditionDestroy(m_handle)); }
    operator QXHandle() const { return m_handle; }

  private:
    QXHandle m_handle = nullptr;
};

QXResult AcquireAndRelease(QXHandle condition) {
    const QXResult result = QXConditionAcquire(condition);
    QXConditionRelease(condition);
    return result;
}

TEST(Condition, ASignalWithoutAWaiterIsNotRemembered) {
    const Condition condition;
    EXPECT_EQ(QX_S_OK, QXConditionSignal(condition));
    EXPECT_EQ(QX_S_OK, QXConditionAcquire(condition));
    EXPECT_EQ(QX_S_OK, QXConditionBroadcast(condition));
    for (const uint32_t ms : {0u, 5u}) {
        EXPECT_EQ(QX_E_TIMEOUT, QXConditionTimedWait(condition, ms));
    }
    EXPECT_EQ(QX_S_OK, QXConditionRelease(condition));
    EXPECT_EQ(QX_S_OK, QXConditionDestroy(nullptr));
}

TEST(Condition, AWaitGivesUpOneHoldAndHasItAgainAfterATimeOut) {
    for (const int depth : {1, 2}) {
        const Condition condition;
        for (int hold = 0; hold < depth; ++hold) {
            QXConditionAcquire(condition);
        }
        BlockedCall other([&] { return AcquireAndRelease(condition); });
        EXPECT_EQ(QX_E_TIMEOUT, QXConditionTimedWait(condition, 20));
        while (depth == 1 && !other.HasReturned()) {
            QXConditionTimedWait(condition, 1);
        }
        EXPECT_EQ(depth == 1, other.HasReturned());
        BlockedCall later([&] { return AcquireAndRelease(condition); });
        EXPECT_FALSE(later.HasReturned());
        for (int hold = 0; hold < depth; ++hold) {
            EXPECT_EQ(QX_S_OK, QXConditionRelease(condition));
        }
        EXPECT_EQ(QX_S_OK, other.Result());
        EXPECT_EQ(QX_S_OK, later.Result());
    }
}

TEST(Condition, ASignalReleasesOneAndABroadcastAll) {
    constexpr int kThreads = 4;
    const Condition condition;
    int released = 0;
    std::vector<std::unique_ptr<BlockedCall>> threads;
    for (int index = 0; index < kThreads; ++index) {
        threads.push_back(std::make_unique<BlockedCall>([&] {
            QXConditionAcquire(condition);
            const QXResult result = QXConditionWait(condition);
            ++released;
            QXConditionRelease(condition);
            return result;
        }));
    }
    const auto releasedNow = [&] {
        QXConditionAcquire(condition);
        const int count = released;
        QXConditionRelease(condition);
        return count;
    };
    EXPECT_EQ(QX_S_OK, QXConditionSignal(condition));
    EXPECT_EQ(QX_S_OK, threads[0]->Result());
    EXPECT_EQ(1, releasedNow());
    EXPECT_EQ(QX_S_OK, QXConditionBroadcast(condition));
    for (const auto& thread : threads) {
        EXPECT_EQ(QX_S_OK, thread->Result());
    }
    EXPECT_EQ(kThreads, releasedNow());
}

}  // namespace

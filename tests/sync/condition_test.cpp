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

TEST(Condition, ASignalWithoutAWaiterIsNotRemembered) {
    const Condition condition;
    EXPECT_EQ(QX_S_OK, QXConditionSignal(condition));
    EXPECT_EQ(QX_S_OK, QXConditionAcquire(condition));
    EXPECT_EQ(QX_S_OK, QXConditionBroadcast(condition));
    EXPECT_EQ(QX_E_TIMEOUT, QXConditionTimedWait(condition, 0));
    EXPECT_EQ(QX_E_TIMEOUT, QXConditionTimedWait(condition, 5));
    EXPECT_EQ(QX_S_OK, QXConditionRelease(condition));
    EXPECT_EQ(QX_S_OK, QXConditionDestroy(nullptr));
}

TEST(Condition, AWaitGivesUpOneHoldAndHasItAgainAfterATimeOut) {
    for (const int depth : {1, 2}) {
        const Condition condition;
        const auto pass = [&] {
            const QXResult result = QXConditionAcquire(condition);
            QXConditionRelease(condition);
            return result;
        };
        for (int hold = 0; hold < depth; ++hold) {
            QXConditionAcquire(condition);
        }
        BlockedCall other(pass);
        EXPECT_EQ(QX_E_TIMEOUT, QXConditionTimedWait(condition, 20));
        while (depth == 1 && !other.HasReturned()) {
            QXConditionTimedWait(condition, 1);
        }
        EXPECT_EQ(depth == 1, other.HasReturned());
        BlockedCall later(pass);
        EXPECT_FALSE(later.HasReturned());
        for (int hold = 0; hold < depth; ++hold) {
            EXPECT_EQ(QX_S_OK, QXConditionRelease(condition));
        }
        EXPECT_EQ(QX_S_OK, other.Result());
        EXPECT_EQ(QX_S_OK, later.Result());
    }
}

TEST(Condition, ASignalReleasesOneAndABroadcastAll) {
    const Condition condition;
    int released = 0;
    std::vector<std::unique_ptr<BlockedCall>> threads;
    while (threads.size() < 4) {
        threads.push_back(std::make_unique<BlockedCall>([&] {
            QXConditionAcquire(condition);
            const QXResult result = QXConditionWait(condition);
            ++released;
            QXConditionRelease(condition);
            return result;
        }));
    }
    EXPECT_EQ(QX_S_OK, QXConditionSignal(condition));
    EXPECT_EQ(QX_S_OK, threads[0]->Result());
    QXConditionAcquire(condition);
    EXPECT_EQ(1, released);
    QXConditionRelease(condition);
    EXPECT_EQ(QX_S_OK, QXConditionBroadcast(condition));
    for (const auto& thread : threads) {
        EXPECT_EQ(QX_S_OK, thread->Result());
    }
}

}  // namespace

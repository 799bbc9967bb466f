// The initialisation from the inside. These tests are linked to the library's objects, so loading
// the program has initialised them once.
#include "core/core_init.h"

#include <gtest/gtest.h>
#include <qxcore.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "component/module_manager.h"
#include "core/client_data.h"
#include "core/entry.h"
#include "core/entry_guard.h"
#include "core/global_data.h"
#include "support/allocation_fault.h"
#include "sync/lock_stat_manager.h"

namespace {

using GlobalPointers = std::array<const void*, 5>;

GlobalPointers Globals() {
    return {CQXGlobalData::m_mutexProvider, CQXGlobalData::m_lockStatManager,
            CQXGlobalData::m_debugMutex, CQXGlobalData::m_moduleManager,
            CQXGlobalData::m_clientData};
}

TEST(CoreInit, CallsAreCounted) {
    const GlobalPointers before = Globals();
    EXPECT_EQ(0, std::count(before.begin(), before.end(), nullptr));
    EXPECT_TRUE(CQXGlobalData::m_moduleManager->IsMarked(s_moduleToken));
    EXPECT_EQ(QX_S_OK, QXCoreInit());
    EXPECT_EQ(before, Globals());
    EXPECT_EQ(QX_S_OK, QXCoreTerm());
    EXPECT_EQ(before, Globals());
    EXPECT_EQ(QX_S_OK, QXCoreTerm());
    EXPECT_EQ(GlobalPointers{}, Globals());
    EXPECT_EQ(QX_E_FAIL, QXCoreTerm());
    EXPECT_EQ(QX_S_OK, QXCoreInit());
    EXPECT_NE(nullptr, CQXGlobalData::m_clientData);
}

TEST(CoreInit, FailureLeavesWhatIsBuiltAndTerminationTakesItDown) {
    EXPECT_EQ(QX_S_OK, QXCoreTerm());
    std::array<int, 5> firstMissing{};
    const int failures = ForEachFailingAllocation([&] {
        const QXResult result = QXCoreInit();
        const GlobalPointers built = Globals();
        EXPECT_EQ(QX_S_OK, QXCoreTerm());
        EXPECT_EQ(GlobalPointers{}, Globals());
        // A manager whose mutex cannot be made goes on without one, so a fault may pass unseen.
        if (QX_FAILED(result)) {
            EXPECT_EQ(QX_E_OUTOFMEMORY, result);
            const auto gap = std::find(built.begin(), built.end(), nullptr);
            EXPECT_EQ(std::count(gap, built.end(), nullptr), built.end() - gap);
            ++firstMissing[static_cast<size_t>(gap - built.begin())];
        }
        return QX_SUCCEEDED(result);
    });
    EXPECT_GE(failures, 5);
    EXPECT_EQ(firstMissing.end(), std::find(firstMissing.begin(), firstMissing.end(), 0));
    EXPECT_EQ(QX_S_OK, QXCoreInit());
}

TEST(EntryGuard, TurnsWhatIsThrownIntoItsCode) {
    EXPECT_EQ(7, RunGuarded([] { return QXResult{7}; }));
    EXPECT_EQ(QX_E_TIMEOUT, RunGuarded([]() -> QXResult { throw EQXCoreException(QX_E_TIMEOUT); }));
    EXPECT_EQ(5, RunGuarded([]() -> QXResult { throw EQXCoreException(5); }));
    EXPECT_EQ(QX_E_OUTOFMEMORY, RunGuarded([]() -> QXResult { throw std::bad_alloc(); }));
    EXPECT_EQ(QX_E_FAIL, RunGuarded([]() -> QXResult { throw std::length_error("too long"); }));
    EXPECT_EQ(QX_E_FAIL, RunGuarded([]() -> QXResult { throw 1; }));
}

struct Counted : CQXCoreRefCounted {
    explicit Counted(bool* isThere) : m_isThere(isThere) {}
    ~Counted() override { *m_isThere = false; }

    bool* m_isThere;
};

TEST(RefPtr, LastDetachDestroysTheObject) {
    bool isThere = true;
    auto* const object = new Counted(&isThere);
    CQXRefPtr<Counted> first(object);
    CQXRefPtr<Counted> second;
    second = first;
    second = *&second;
    EXPECT_EQ(2u, object->m_refCount);
    CQXRefPtr<Counted> third(std::move(second));
    EXPECT_FALSE(second);
    third = CQXRefPtr<Counted>();
    EXPECT_EQ(1u, object->m_refCount);
    first = CQXRefPtr<Counted>(first.MoveOut());
    EXPECT_EQ(2u, object->m_refCount);
    EXPECT_EQ(1u, DropReference(object));
    EXPECT_TRUE(isThere);
    first = CQXRefPtr<Counted>();
    EXPECT_FALSE(isThere);
}

}  // namespace

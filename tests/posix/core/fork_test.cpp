// Forked children of a process that uses the library.
#include <gtest/gtest.h>
#include <qxcore.h>
#include <unistd.h>

#include <atomic>
#include <thread>

#include "platform/lifetime.h"
#include "platform/threads.h"
#include "posix/support/forked_child.h"

namespace {

TEST(Fork, IdentifiersDifferOnBothSides) {
    GUID first;
    ASSERT_EQ(QX_S_OK, QXComGenerateGUID(&first));
    const SharedWithChildren<GUID> theirs;
    ForkedChild child([&] { return QXComGenerateGUID(&*theirs); });
    GUID mine;
    QXComGenerateGUID(&mine);
    EXPECT_EQ(0, child.Wait());
    EXPECT_FALSE(QXComIsEqualGUID(&mine, &*theirs));
    EXPECT_FALSE(QXComIsEqualGUID(&mine, &first));
}

TEST(Fork, ThreadIdIsTheKernelsAlsoInAForkedChildAndItsThreads) {
    EXPECT_EQ(static_cast<u32>(gettid()), platform::GetCurrentThreadId());
    std::thread([] {
        EXPECT_EQ(static_cast<u32>(gettid()), platform::GetCurrentThreadId());
    }).join();
    ForkedChild child(
        [] { return static_cast<u32>(gettid()) == platform::GetCurrentThreadId() ? 0 : 1; });
    EXPECT_EQ(0, child.Wait());
}

TEST(Fork, IsPossibleWhenTheLibraryHasBeenDetached) {
    DllMain(nullptr, platform::kProcessDetach, nullptr);
    EXPECT_EQ(0, ForkedChild([] { return 0; }).Wait());
    DllMain(nullptr, platform::kProcessAttach, nullptr);
    EXPECT_EQ(0, ForkedChild([] { return 0; }).Wait());
}

// The child has no such thread, but finds the memory as that one left it.
TEST(Fork, ChildBesideABusyThreadComesToItsEnd) {
    static std::atomic<int> s_rounds{0};
    std::thread([] {
        static const int kModule = 0;
        for (;; ++s_rounds) {
            QXModuleSetInitialized(&kModule, 1);
            QXModuleSetInitialized(&kModule, 0);
        }
    }).detach();
    while (s_rounds < 3) {
        std::this_thread::yield();
    }
    for (int round = 0; round < 15; ++round) {
        ForkedChild child([] { return 0; }, ChildEnd::kThroughExitHandlers);
        ASSERT_EQ(0, child.Wait()) << round;
    }
}

}  // namespace

// Forked children of a process that uses the library.
#include <qxcore.h>
#include <signal.h>
#include <sys/time.h>

#include <atomic>
#include <thread>

#include "config/registry_support.h"
#include "platform/lifetime.h"
#include "platform/threads.h"
#include "posix/support/forked_child.h"

namespace {

using HandlerFork = Registry;

volatile sig_atomic_t s_isChild = 0;
volatile sig_atomic_t s_forks = 0;
volatile sig_atomic_t s_failures = 0;

void ForkInHandler(int) {
    const pid_t child = ::fork();
    if (child == 0) {
        s_isChild = 1;
        return;
    }
    int status = 1;
    ::waitpid(child, &status, 0);
    s_failures = s_failures + (status != 0);
    s_forks = s_forks + 1;
}

// Whatever the handler interrupts. The child goes on with that, and then uses the store itself.
TEST_F(HandlerFork, LeavesTheStoreWholeOnBothSides) {
    ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
    ::signal(SIGALRM, ForkInHandler);
    constexpr int kRounds = 100;
    for (int round = 0; round < kRounds; ++round) {
        const int before = s_forks;  // the timer may go off before anything else happens
        const itimerval timer = {{0, 0}, {0, 50 + 7 * round % 300}};
        ::setitimer(ITIMER_REAL, &timer, nullptr);
        while (s_forks == before && s_isChild == 0) {
            ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
            ASSERT_EQ(Text(u"k", u"v"), u"text");
        }
        if (s_isChild != 0) {
            std::_Exit(SetText(u"k", u"child", u"theirs") != 0 || Text(u"k", u"v") != u"text" ||
                       Text(u"k", u"child") != u"theirs");
        }
    }
    EXPECT_EQ(s_failures, 0);
    EXPECT_EQ(s_forks, kRounds);
}

TEST(Fork, ThreadIdIsTheKernelsAlsoInTheChild) {
    const auto isTheKernels = [] { return u32(gettid()) == platform::GetCurrentThreadId(); };
    EXPECT_TRUE(isTheKernels());
    EXPECT_EQ(1, ForkedChild(isTheKernels).Wait());
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

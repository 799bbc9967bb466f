// Forks in a signal handler, whatever it interrupts.
#include <signal.h>
#include <sys/time.h>

#include "config/registry_support.h"
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

void SetTimer(int microseconds) {
    const itimerval timer = {{0, 0}, {0, microseconds}};
    ::setitimer(ITIMER_REAL, &timer, nullptr);
}

// The child goes on with what was interrupted, and then uses the store itself.
[[noreturn]] void EndChild() {
    const bool good = SetText(u"k", u"child", u"theirs") == 0 && Text(u"k", u"v") == u"text" &&
                      Text(u"k", u"child") == u"theirs";
    std::_Exit(good ? 0 : 1);
}

TEST_F(HandlerFork, LeavesTheStoreWholeOnBothSides) {
    ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
    ::signal(SIGALRM, ForkInHandler);
    constexpr int kRounds = 100;
    for (int round = 0; round < kRounds; ++round) {
        const int before = s_forks;  // the timer may go off before anything else happens
        SetTimer(50 + 7 * round % 300);
        while (s_forks == before && s_isChild == 0) {
            ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
            ASSERT_EQ(Text(u"k", u"v"), u"text");
        }
        if (s_isChild != 0) {
            EndChild();
        }
    }
    EXPECT_EQ(s_failures, 0);
    EXPECT_EQ(s_forks, kRounds);
}

}  // namespace

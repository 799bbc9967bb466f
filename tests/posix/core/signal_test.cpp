// Signals that come while the library is at work.
#include <gtest/gtest.h>
#include <qxcore/debug.h>
#include <qxcore/thread.h>
#include <signal.h>
#include <sys/time.h>

#include <chrono>

namespace {

volatile sig_atomic_t s_signals = 0;

void CountSignal(int) {
    s_signals = s_signals + 1;
}

TEST(DebugBreak, CanBeResumed) {
    s_signals = 0;
    signal(SIGTRAP, CountSignal);
    QXDebugBreak();
    EXPECT_EQ(1, s_signals);
    signal(SIGTRAP, SIG_DFL);
}

TEST(Sleep, IsNotShortenedBySignals) {
    constexpr auto kLength = std::chrono::milliseconds(50);
    s_signals = 0;
    signal(SIGALRM, CountSignal);
    const itimerval every5ms = {{0, 5000}, {0, 5000}};
    setitimer(ITIMER_REAL, &every5ms, nullptr);
    const auto begin = std::chrono::steady_clock::now();
    QXSleep(kLength.count());
    EXPECT_GE(std::chrono::steady_clock::now() - begin, kLength);
    const itimerval off = {};
    setitimer(ITIMER_REAL, &off, nullptr);
    EXPECT_GE(s_signals, 1);
    QXSleep(0);
}

}  // namespace

// Waiting for what another process or the passing of time brings about.
#ifndef TESTS_POSIX_SUPPORT_COMES_TRUE_H
#define TESTS_POSIX_SUPPORT_COMES_TRUE_H

#include <sched.h>

#include <chrono>

// Within a time that is far longer than it should need.
template <typename Condition>
bool ComesTrue(Condition&& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        ::sched_yield();
    }
    return true;
}

#endif

// What only this system's threads can meet: limits, forks, ends by pthread_exit, what is left
// behind.
#include <gtest/gtest.h>
#include <pthread.h>
#include <qxcore.h>
#include <sched.h>
#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>

#include "posix/support/forked_child.h"
#include "support/system.h"

namespace {

void* DoNothing(void*) {
    return nullptr;
}

QXResult Start(QXThreadRoutine routine, void* argument, QXHandle* thread) {
    uint32_t id = 0;
    return QXThreadCreate(routine, argument, nullptr, 1, thread, &id);
}

// The first threads fill what the C library keeps of stacks and heaps.
TEST(ThreadStandIn, ThousandsLeaveNothingBehind) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer keeps account of threads";
#endif
    Footprint settled = {};
    for (const int count : {8000, 2000}) {
        settled = MeasureFootprint();
        for (int round = 0; round < count; ++round) {
            QXHandle thread = nullptr;
            ASSERT_EQ(QX_S_OK, Start(DoNothing, nullptr, &thread));
            ASSERT_EQ(QX_S_OK,
                      round % 2 == 0 ? QXThreadDetach(thread) : QXThreadJoin(thread, nullptr));
        }
        const std::filesystem::path tasks = "/proc/self/task";
        while (std::distance(std::filesystem::directory_iterator(tasks), {}) > 1) {
            std::this_thread::yield();
        }
    }
    const Footprint after = MeasureFootprint();
    EXPECT_EQ(settled.handles, after.handles);
    EXPECT_LE(after.heap, settled.heap + 16000);  // 8 bytes a thread
}

TEST(ThreadStandIn, RefusedThreadIsAFailure) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs a user of its own for the limit";
    }
    ForkedChild child([] {
        const rlimit limit = {1, 1};
        if (setresuid(54321, 54321, 54321) != 0 || setrlimit(RLIMIT_NPROC, &limit) != 0) {
            return 1;
        }
        QXHandle thread = nullptr;
        uint32_t id = 5;
        const QXResult result = QXThreadCreate(DoNothing, nullptr, nullptr, 0, &thread, &id);
        return result == QX_E_FAIL && thread == QX_INVALID_HANDLE && id == 0 ? 0 : 2;
    });
    EXPECT_EQ(0, child.Wait());
}

TEST(ThreadStandIn, ThreadThatEndsByPthreadExitCanBeJoined) {
    QXHandle thread = nullptr;
    const QXThreadRoutine routine = [](void*) -> void* {
        pthread_exit(reinterpret_cast<void*>(uintptr_t{42}));
    };
    ASSERT_EQ(QX_S_OK, Start(routine, nullptr, &thread));
    uint64_t exitValue = 0;
    EXPECT_EQ(QX_S_OK, QXThreadJoin(thread, &exitValue));
    EXPECT_EQ(42u, exitValue);
    EXPECT_EQ(0, QXThreadIsFinished(thread));  // it has never marked itself
}

TEST(ThreadStandIn, ForkedChildStartsThreadsAndHasNoneOfItsParents) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "a fork among threads may leave the sanitizer locked";
#endif
    std::atomic<bool> stop{false};
    QXHandle busy = nullptr;
    const QXThreadRoutine startMore = [](void* flag) -> void* {
        while (!*static_cast<std::atomic<bool>*>(flag)) {
            QXHandle thread = nullptr;
            EXPECT_EQ(QX_S_OK, Start(DoNothing, nullptr, &thread));
            EXPECT_EQ(QX_S_OK, QXThreadJoin(thread, nullptr));
        }
        return nullptr;
    };
    ASSERT_EQ(QX_S_OK, Start(startMore, &stop, &busy));
    for (int round = 0; round < 50; ++round) {
        ForkedChild child([&] {
            QXHandle own = nullptr;
            const bool works = QXThreadJoin(busy, nullptr) == QX_E_HANDLE &&
                               Start(DoNothing, nullptr, &own) == QX_S_OK &&
                               QXThreadJoin(own, nullptr) == QX_S_OK &&
                               QXThreadDetach(busy) == QX_S_OK;
            return works ? 0 : 1;
        });
        EXPECT_EQ(0, child.Wait());
    }
    stop = true;
    EXPECT_EQ(QX_S_OK, QXThreadJoin(busy, nullptr));
}

TEST(ThreadStandIn, AffinityBeyondTheProcessesOwnIsRefusedAndNotCut) {
    cpu_set_t whole;
    sched_getaffinity(0, sizeof whole, &whole);
    if (CPU_COUNT(&whole) < 2) {
        GTEST_SKIP() << "one processor";
    }
    ForkedChild child([] {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(0, &one);
        sched_setaffinity(0, sizeof one, &one);
        const uint64_t first = 1, second = 2, both = 3;
        const bool refused =
            QXSetCpuAffinity(&second) == QX_E_FAIL && QXSetCpuAffinity(&both) == QX_E_FAIL;
        return refused && QXSetCpuAffinity(&first) == QX_S_OK ? 0 : 1;
    });
    EXPECT_EQ(0, child.Wait());
}

}  // namespace

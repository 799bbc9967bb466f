#include <gtest/gtest.h>
#include <qxcore.h>

#include <atomic>
#include <thread>
#include <vector>

#include "support/failure.h"

namespace {

void* Value(uint64_t value) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(value));
}

void* ReturnArgument(void* argument) {
    return argument;
}

QXHandle Start(QXThreadRoutine routine, void* argument, uint32_t stackSize = 0) {
    QXHandle thread = nullptr;
    uint32_t id = 0;
    EXPECT_EQ(QX_S_OK, QXThreadCreate(routine, argument, nullptr, stackSize, &thread, &id));
    EXPECT_NE(0u, id);
    EXPECT_EQ(Value(id), thread);
    return thread;
}

TEST(Thread, JoinGivesTheLowHalfOfTheResultOnce) {
    for (const uint64_t result : {0ull, 7ull, 0x123456789ABCDEF0ull, ~0ull}) {
        const QXHandle thread = Start(ReturnArgument, Value(result));
        uint64_t exitValue = ~0ull;
        EXPECT_EQ(0, QXThreadIsFinished(thread));
        EXPECT_EQ(QX_S_OK, QXThreadJoin(thread, &exitValue));
        EXPECT_EQ(result & 0xFFFFFFFF, exitValue);
        EXPECT_EQ(1, QXThreadIsFinished(thread));
        exitValue = 5;
        const ErrnoStays errnoStays;
        EXPECT_EQ(QX_E_HANDLE, QXThreadJoin(thread, &exitValue));
        EXPECT_EQ(0u, exitValue);
        EXPECT_EQ(QX_E_HANDLE, QXThreadJoin(thread, nullptr));
    }
}

TEST(Thread, HandleIsTheNumberThatTheThreadItselfGets) {
    uint32_t own = 0;
    const QXHandle thread = Start(
        [](void* out) -> void* {
            *static_cast<uint32_t*>(out) = QXThreadGetID();
            return nullptr;
        },
        &own);
    EXPECT_EQ(QX_S_OK, QXThreadJoin(thread, nullptr));
    EXPECT_EQ(Value(own), thread);
    EXPECT_NE(own, QXThreadGetID());
    EXPECT_EQ(reinterpret_cast<QXHandle>(intptr_t{-2}), QXThreadGetHandle());
    EXPECT_EQ(QX_E_HANDLE, QXThreadJoin(QXThreadGetHandle(), nullptr));
    EXPECT_EQ(0, QXThreadIsFinished(Value(QXThreadGetID())));  // this thread loaded the library
    EXPECT_EQ(1, QXThreadIsFinished(nullptr));
    EXPECT_EQ(QX_S_OK, QXThreadYield());
}

TEST(Thread, DetachedThreadIsOnRecordUntilItEndsAndCannotBeJoined) {
    std::atomic<bool> gate{false};
    const QXThreadRoutine wait = [](void* open) -> void* {
        static_cast<std::atomic<bool>*>(open)->wait(false);
        return nullptr;
    };
    const QXHandle thread = Start(wait, &gate);
    EXPECT_EQ(QX_S_OK, QXThreadDetach(thread));
    uint64_t exitValue = 5;
    EXPECT_EQ(QX_E_HANDLE, QXThreadJoin(thread, &exitValue));
    EXPECT_EQ(0u, exitValue);
    EXPECT_EQ(0, QXThreadIsFinished(thread));
    gate = true;
    gate.notify_all();
    while (QXThreadIsFinished(thread) == 0) {  // the record goes a moment after the end
        std::this_thread::yield();
    }
    EXPECT_EQ(QX_E_HANDLE, QXThreadJoin(thread, nullptr));
}

TEST(Thread, EndedThreadStaysOnRecordUntilItIsGivenUp) {
    std::atomic<int> destroyed{0};
    struct Witness {
        std::atomic<int>* m_destroyed = nullptr;
        ~Witness() {
            if (m_destroyed != nullptr) {
                ++*m_destroyed;
            }
        }
    };
    const QXThreadRoutine routine = [](void* count) -> void* {
        static thread_local Witness t_witness;
        t_witness.m_destroyed = static_cast<std::atomic<int>*>(count);
        return nullptr;
    };
    const QXHandle thread = Start(routine, &destroyed);
    while (destroyed == 0) {
        std::this_thread::yield();
    }
    EXPECT_EQ(0, QXThreadIsFinished(thread));
    EXPECT_EQ(QX_S_OK, QXThreadDetach(thread));
    EXPECT_EQ(1, QXThreadIsFinished(thread));
    EXPECT_EQ(QX_S_OK, QXThreadJoin(Start(routine, &destroyed), nullptr));
    EXPECT_EQ(2, destroyed);
}

TEST(Thread, ManyAreJoinedAndDetachedFromSeveralThreads) {
    std::atomic<int> ran{0};
    const QXThreadRoutine routine = [](void* count) -> void* {
        ++*static_cast<std::atomic<int>*>(count);
        return nullptr;
    };
    std::vector<std::jthread> starters;
    for (int index = 0; index < 4; ++index) {
        starters.emplace_back([&] {
            for (int round = 0; round < 250; ++round) {
                EXPECT_EQ(QX_S_OK, QXThreadJoin(Start(routine, &ran), nullptr));
                EXPECT_EQ(QX_S_OK, QXThreadDetach(Start(routine, &ran)));
            }
        });
    }
    starters.clear();
    while (ran != 2000) {
        std::this_thread::yield();
    }
}

TEST(Thread, AnyStackSizeIsRoundedUp) {
    const QXThreadRoutine useStack = [](void*) -> void* {
        volatile char block[200 << 10];
        for (std::size_t index = 0; index < sizeof block; index += 512) {
            block[index] = 1;
        }
        return Value(block[512]);
    };
    for (const uint32_t size : {1u, 300001u, (64u << 20) + 1}) {
        uint64_t exitValue = 0;
        EXPECT_EQ(QX_S_OK, QXThreadJoin(Start(useStack, nullptr, size), &exitValue));
        EXPECT_EQ(1u, exitValue);
    }
}

TEST(Affinity, IsTheCallingThreads) {
    std::thread([] {
        const uint64_t none = 0;
        uint64_t previous = 5;
        EXPECT_EQ(QX_E_FAIL, QXSetCpuAffinity(&none));
        EXPECT_EQ(QX_E_FAIL, QXGetSetCpuAffinity(&previous, &none));
        EXPECT_EQ(0u, previous);
        uint64_t all = 0;
        uint64_t one = 1;
        while (QX_FAILED(QXGetSetCpuAffinity(&all, &one))) {
            one <<= 1;
        }
        EXPECT_EQ(one, all & one);
        EXPECT_EQ(QX_S_OK, QXGetSetCpuAffinity(&previous, &all));
        EXPECT_EQ(one, previous);
        EXPECT_EQ(QX_S_OK, QXGetSetCpuAffinity(&previous, &all));
        EXPECT_EQ(all, previous);
    }).join();
}

}  // namespace

// The end of a process to which the library is linked, and of its children.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <atomic>
#include <cstdlib>
#include <functional>
#include <thread>

#include "support/child_process.h"
#include "support/registered_classes.h"

namespace {

constexpr int kRounds = 15;

// Runs an action of the library again and again, in a thread of its own, until the process is gone.
void KeepBusy(const std::function<void()>& action) {
    static std::atomic<int> s_rounds;
    s_rounds = 0;
    std::thread([action] {
        for (;;) {
            action();
            ++s_rounds;
        }
    }).detach();
    while (s_rounds < 3) {
        std::this_thread::yield();
    }
}

void UseMarks() {
    static const int kModule = 0;
    QXModuleSetInitialized(&kModule, 1);
    QXModuleSetInitialized(&kModule, 0);
}

void UseEverything() {
    UseMarks();
    const uint32_t number = 1;
    QXRegistrySetValue(QX_HKEY_USER, u"End", u"number", QX_REG_DWORD, &number, sizeof number);
    const GUID classID = WitnessClass(kPlain);
    void* object = nullptr;
    if (QX_SUCCEEDED(QXComCreateObject(&classID, nullptr, &QX_IID_UNKNOWN, &object))) {
        IQXUnknown_Release(object);
    }
    if (QX_SUCCEEDED(QXComMalloc(8, &object))) {
        QXComFree(object);
    }
}

TEST(ProcessEnd, PullsNothingFromUnderThreadsOfALinkedProgram) {
    const RegisteredClasses classes;
    classes.Register(kPlain, classes.WitnessPath());
    for (int round = 0; round < kRounds; ++round) {
        ChildProcess child(
            [] {
                KeepBusy(UseEverything);
                return 0;
            },
            ChildEnd::kThroughExitHandlers);
        ASSERT_EQ(0, child.Wait()) << round;
    }
}

// The child has no such thread, but finds the memory as that one left it.
TEST(ProcessEnd, ComesToAChildThatWasForkedBesideABusyThread) {
    KeepBusy(UseMarks);
    for (int round = 0; round < kRounds; ++round) {
        ChildProcess child([] { return 0; }, ChildEnd::kThroughExitHandlers);
        ASSERT_EQ(0, child.Wait()) << round;
    }
}

}  // namespace

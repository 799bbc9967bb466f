// The end of a process to which the library is linked.
#include <gtest/gtest.h>
#include <qxcore.h>

#include <atomic>
#include <thread>

#include "support/child_role.h"
#include "support/known_differences.h"
#include "support/registered_classes.h"

namespace {

void UseEverything() {
    static const int kModule = 0;
    QXModuleSetInitialized(&kModule, 1);
    QXModuleSetInitialized(&kModule, 0);
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

CHILD_ROLE(EndWhileAThreadIsBusy) {
    static std::atomic<int> s_rounds{0};
    std::thread([] {
        for (;; ++s_rounds) {
            UseEverything();
        }
    }).detach();
    while (s_rounds < 3) {
        std::this_thread::yield();
    }
    return 0;
}

TEST(ProcessEnd, PullsNothingFromUnderThreadsOfALinkedProgram) {
    const RegisteredClasses classes;
    classes.Register(kPlain, classes.WitnessPath());
    int badEnds = 0;
    for (int round = 0; round < 15; ++round) {
        badEnds += ChildProcess("EndWhileAThreadIsBusy").Wait() != 0 ? 1 : 0;
    }
    EXPECT_LE(badEnds, BusyProcessesMayEndBadly() ? 10 : 0);
}

}  // namespace

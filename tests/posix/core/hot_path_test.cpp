// The hot paths make no system call: they run where any but a thread's end is death.
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <qxcore.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <thread>

#include "posix/support/forked_child.h"
#include "support/system.h"

namespace {

template <uint32_t kFlags>
void UseMutex() {
    static QXHandle s_mutex = nullptr;
    if (s_mutex == nullptr) {
        QXMutexCreate("hot", kFlags, &s_mutex);
    }
    for (int round = 0; round < 100; ++round) {
        QXMutexAcquire(s_mutex);
        QXMutexTryAcquire(s_mutex);
        QXMutexRelease(s_mutex);
        QXMutexRelease(s_mutex);
    }
}

void UseWaitingObjects() {
    static QXHandle s_event = nullptr;
    static QXHandle s_gate = nullptr;
    static QXHandle s_semaphore = nullptr;
    static QXHandle s_condition = nullptr;
    static QXHandle s_lock = nullptr;
    if (s_event == nullptr) {
        QXEventCreate("hot", 0, &s_event);
        QXGateCreate("hot", 0, &s_gate);
        QXSemaphoreCreate(0, "hot", 0, &s_semaphore);
        QXConditionCreate("hot", 0, &s_condition);
        QXRWLockCreate("hot", 0, &s_lock);
    }
    for (int round = 0; round < 100; ++round) {
        QXEventSignal(s_event);
        QXEventWait(s_event);
        QXEventTimedWait(s_event, 0);
        QXGateOpen(s_gate);
        QXGateTimedWait(s_gate, 1000);
        QXGateClose(s_gate);
        QXGateTryWait(s_gate);
        QXSemaphorePost(s_semaphore);
        QXSemaphoreWait(s_semaphore);
        QXConditionAcquire(s_condition);
        QXConditionSignal(s_condition);
        QXConditionBroadcast(s_condition);
        QXConditionRelease(s_condition);
        QXRWLockAcquireRead(s_lock);
        QXRWLockAcquireWrite(s_lock);
        QXRWLockReleaseWrite(s_lock);
        QXRWLockReleaseRead(s_lock);
    }
}

void UseStrings() {
    char narrow[64];
    char16_t wide[64];
    QXStrNZCpyW(wide, 64, u"Text of some length, with \u00E4 and more behind it", 64);
    QXStrCatW(QXStrToLowerW(wide), u"tail");
    QXStrICmpW(wide, u"text");
    QXStrICmpA(QXStrCpyA(narrow, "Narrow Text"), "narrow text!");
    QXLToStrW(-12345, wide, 10);
    QXStrToLW(wide, nullptr, 10);
}

void UseConversions() {
    char16_t wide[64];
    char narrow[128];
    size_t length = 0;
    QXEncUTF8ToUTF16(wide, 64, &length, "\xC3\xA4 and \xF0\x9F\x98\x80", -1, -1);
    QXEncUTF16ToUTF8(narrow, 128, &length, wide, static_cast<int32_t>(length), -1);
    QXAnsiToUnicode(wide, narrow, 64);
    QXUnicodeToAnsi(narrow, wide, 128);
}

// What was read before is in the process's memory, absence and order included.
void ReadRegistry() {
    static QXHandle s_values = nullptr;
    if (s_values == nullptr) {
        QXRegistrySetValue(QX_HKEY_USER, u"hot\\key", u"value", QX_REG_BINARY, "text", 4);
        QXRegistryOpenValueEnum(QX_HKEY_USER, u"hot\\key", &s_values);
    }
    char data[8];
    uint32_t size = sizeof data;
    if (QXRegistryGetValue(QX_HKEY_USER, u"Hot\\KEY", u"Value", nullptr, data, &size) != 0 ||
        QXRegistryGetValue(QX_HKEY_USER, u"hot\\key", u"none", nullptr, data, &size) == 0 ||
        QXRegistryGetValue(QX_HKEY_USER, u"none", u"value", nullptr, data, &size) == 0) {
        std::abort();
    }
    char16_t name[8];
    uint32_t length = 8;
    uint32_t type = 0;
    QXRegistryEnumNextValue(s_values, name, &length, &type, data, &size);
}

// The kernel's own strict mode would take the processor's clock away too, which a measured mutex
// reads.
bool AllowNothingButTheEnd() {
    sock_filter rules[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_exit, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
    };
    const sock_fprog program = {4, rules};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0;
}

// The first run may bind symbols and learn of the processor; the second has nothing but its work.
int EndsWithoutSystemCall(const std::function<void()>& action) {
    action();
    if (!AllowNothingButTheEnd()) {
        return 1;
    }
    action();
    return static_cast<int>(syscall(SYS_exit, 0));
}

// Once a second the library looks at its files.
void WaitForTheBeginningOfASecond() {
    timespec now;
    do {
        ::clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    } while (now.tv_nsec > 200'000'000);
}

TEST(HotPaths, ReadTheRegistryWithoutASystemCall) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer makes system calls of its own";
#endif
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    const OwnRegistry registry;
    ::chmod(registry.Folder().c_str(), 0777);
    ForkedChild ordinary([] {
        constexpr uid_t kNobody = 65534;
        if (::setgid(kNobody) != 0 || ::setuid(kNobody) != 0) {
            return 1;
        }
        ReadRegistry();
        WaitForTheBeginningOfASecond();
        return EndsWithoutSystemCall(ReadRegistry);
    });
    EXPECT_EQ(0, ordinary.Wait());
}

TEST(HotPaths, MakeNoSystemCall) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer makes system calls of its own";
#endif
    for (const auto& action :
         {UseMutex<QX_MUTEX_SPIN>, UseMutex<QX_MUTEX_STATS>, UseMutex<QX_MUTEX_CHECKED>,
          UseWaitingObjects, UseStrings, UseConversions}) {
        EXPECT_EQ(0, ForkedChild([&] { return EndsWithoutSystemCall(action); }).Wait());
        // A process of several threads takes other ways.
        ForkedChild threaded([&] {
            std::thread([] {}).join();
            return EndsWithoutSystemCall(action);
        });
        EXPECT_EQ(0, threaded.Wait());
    }
}

}  // namespace

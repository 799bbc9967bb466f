// Cancellations and signals that come while the library is at work.
#include <gtest/gtest.h>
#include <pthread.h>
#include <qxcore.h>
#include <sys/time.h>

#include <chrono>
#include <functional>
#include <thread>

#include "support/registered_classes.h"

namespace {

// Each may block, and is reached by a cancellation that has come before. The component opens a file
// when it is asked, released and unloaded.
TEST(Cancellation, WaitsForTheEndOfWhatMayBlock) {
    const RegisteredClasses classes;
    classes.Register(kPlain, classes.WitnessPath());
    const GUID classID = WitnessClass(kPlain);
    QXHandle event, condition, file, directory, library;
    ASSERT_EQ(QXEventCreate("e", 0, &event), QX_S_OK);
    ASSERT_EQ(QXConditionCreate("c", 0, &condition), QX_S_OK);
    GUID identifier;
    void* factory = nullptr;
    QXDirEntry entry;
    char byte;
    uint32_t done = 0;
    constexpr uint32_t kTemporary = QX_FILE_READ | QX_FILE_WRITE | QX_FILE_TEMPORARY;
    const std::function<QXResult()> calls[] = {
        [&] { return QXComGetClassObject(&classID, &QX_IID_CLASS_FACTORY, &factory); },
        [&] { return IQXUnknown_Release(factory), QX_S_OK; },
        [] { return QXComFlushFactoryCache(); },
        [] { return QXSleep(1), QXSleep(0), QX_S_OK; },
        [&] { return QXEventTimedWait(event, 1) == QX_E_TIMEOUT ? QX_S_OK : QX_E_FAIL; },
        [&] {
            QXConditionAcquire(condition);
            const QXResult result = QXConditionTimedWait(condition, 1);
            return QXConditionRelease(condition), result == QX_E_TIMEOUT ? QX_S_OK : QX_E_FAIL;
        },
        [&] { return QXComGenerateGUID(&identifier); },
        [] { return QXRegistrySetValue(QX_HKEY_USER, u"k", u"v", QX_REG_BINARY, "", 0); },
        [] { return QXRegistryGetValue(QX_HKEY_USER, u"k", u"v", nullptr, nullptr, nullptr); },
        [&] { return QXLibOpen(u"none.so", &library) == QX_E_FAIL ? QX_S_OK : QX_E_FAIL; },
        [&] { return QXFileOpen(nullptr, kTemporary, 0, &file); },
        [&] { return QXFileWrite(file, "x", 1, &done); },
        [&] { return QXFileSeek(file, 0, 0, &done); },
        [&] { return QXFileRead(file, &byte, 1, &done); },
        [&] { return QXFileFlush(file); },
        [&] { return QXFileClose(file); },
        [&] { return QXDirOpen(u"/", &directory); },
        [&] { return QXDirRead(directory, &entry, 0); },
        [&] { return QXDirClose(directory); },
    };
    for (const auto& call : calls) {
        QXResult result = 99;
        std::thread([&] {
            pthread_cancel(pthread_self());
            result = call();
            pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
        }).join();
        EXPECT_EQ(result, QX_S_OK) << &call - calls;
    }
    QXConditionDestroy(condition);
    QXEventDestroy(event);
}

TEST(Sleep, IsNotShortenedBySignals) {
    using namespace std::chrono;
    static volatile sig_atomic_t s_signals = 0;
    signal(SIGALRM, [](int) { s_signals = s_signals + 1; });
    const itimerval every5ms = {{0, 5000}, {0, 5000}};
    setitimer(ITIMER_REAL, &every5ms, nullptr);
    const auto begin = steady_clock::now();
    QXSleep(50);
    EXPECT_GE(steady_clock::now() - begin, milliseconds(50));
    const itimerval off = {};
    setitimer(ITIMER_REAL, &off, nullptr);
    EXPECT_GE(s_signals, 1);
}

}  // namespace

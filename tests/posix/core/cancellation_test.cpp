#include <gtest/gtest.h>
#include <pthread.h>
#include <qxcore.h>

#include <thread>

#include "support/registered_classes.h"

namespace {

// The component opens a file when it is asked, released and unloaded, which cancels a thread.
TEST(Cancellation, WaitsWhileAComponentIsAskedAndReleased) {
    const RegisteredClasses classes;
    classes.Register(kPlain, classes.WitnessPath());
    const GUID classID = WitnessClass(kPlain);
    void* factory = nullptr;
    QXResult found = QX_E_FAIL;
    QXResult flushed = QX_E_FAIL;
    std::thread([&] {
        pthread_cancel(pthread_self());
        found = QXComGetClassObject(&classID, &QX_IID_CLASS_FACTORY, &factory);
        IQXUnknown_Release(factory);
        flushed = QXComFlushFactoryCache();
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    }).join();
    EXPECT_EQ(QX_S_OK, found);
    EXPECT_EQ(QX_S_OK, flushed);
}

// Each may block, and is reached by a cancellation that has come before.
TEST(Cancellation, WaitsForTheEndOfWhatMayBlock) {
    const RegisteredClasses classes;
    void (*const calls[])() = {
        [] { QXSleep(1); },
        [] { QXSleep(0); },
        [] {
            QXHandle event;
            EXPECT_EQ(QXEventCreate("e", 0, &event), QX_S_OK);
            EXPECT_EQ(QXEventTimedWait(event, 1), QX_E_TIMEOUT);
            QXEventDestroy(event);
        },
        [] {
            QXHandle condition;
            EXPECT_EQ(QXConditionCreate("c", 0, &condition), QX_S_OK);
            QXConditionAcquire(condition);
            EXPECT_EQ(QXConditionTimedWait(condition, 1), QX_E_TIMEOUT);
            QXConditionRelease(condition);
            QXConditionDestroy(condition);
        },
        [] {
            GUID identifier;
            EXPECT_EQ(QXComGenerateGUID(&identifier), QX_S_OK);
        },
        [] { EXPECT_EQ(QXRegistrySetValue(QX_HKEY_USER, u"k", u"v", QX_REG_BINARY, "", 0), 0); },
        [] {
            EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"k", u"v", nullptr, nullptr, nullptr), 0);
        },
        [] {
            QXHandle library;
            EXPECT_NE(QXLibOpen(u"qxcore-nothing.so", &library), QX_S_OK);
        },
        [] {
            QXHandle file;
            char byte[1];
            uint32_t done = 0;
            EXPECT_EQ(
                QXFileOpen(nullptr, QX_FILE_READ | QX_FILE_WRITE | QX_FILE_TEMPORARY, 0, &file), 0);
            EXPECT_EQ(QXFileWrite(file, "x", 1, &done), 0);
            EXPECT_EQ(QXFileSeek(file, 0, 0, &done), 0);
            EXPECT_EQ(QXFileRead(file, byte, 1, &done), 0);
            EXPECT_EQ(QXFileFlush(file), 0);
            EXPECT_EQ(QXFileClose(file), 0);
        },
        [] {
            QXHandle directory;
            QXDirEntry entry;
            EXPECT_EQ(QXDirOpen(u"/", &directory), 0);
            EXPECT_EQ(QXDirRead(directory, &entry, 0), 0);
            EXPECT_EQ(QXDirClose(directory), 0);
        },
    };
    for (const auto& call : calls) {
        bool ended = false;
        std::thread([&] {
            pthread_cancel(pthread_self());
            call();
            pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
            ended = true;
        }).join();
        EXPECT_TRUE(ended) << &call - calls;
    }
}

}  // namespace

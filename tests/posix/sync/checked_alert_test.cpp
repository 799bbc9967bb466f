// What a failed check says, to the letter. The alert goes to the system's log, whose function this
// program stands in for.
#include <gtest/gtest.h>
#include <qxcore.h>
#include <syslog.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <thread>

namespace {

std::string g_logged;

}  // namespace

extern "C" void syslog(int, const char* format, ...) {
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    g_logged += text;
}

namespace {

bool Says(const char* text) {
    const bool found = g_logged.find("QXCore Critical Error") != std::string::npos &&
                       g_logged.find(text) != std::string::npos;
    g_logged.clear();
    return found;
}

TEST(CheckedMutexAlert, NamesTheCheckThatFailed) {
    QXErrorAlertSetMethod(QX_ALERT_EVENTLOG);
    QXHandle mutex = nullptr;
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED | QX_MUTEX_NONRECURSIVE, &mutex));
    EXPECT_EQ(QX_E_FAIL, QXMutexRelease(mutex));
    EXPECT_TRUE(Says("CQXCoreMutexChecked::preRelease m_owner check failed")) << g_logged;
    QXMutexAcquire(mutex);
    std::thread([&] { QXMutexTryAcquire(mutex); }).join();
    EXPECT_EQ("", g_logged);  // busy, and no mistake
    for (const auto operation : {QXMutexAcquire, QXMutexTryAcquire}) {
        EXPECT_EQ(QX_E_FAIL, operation(mutex));
        EXPECT_TRUE(Says("CQXCoreMutexChecked::preAcquire m_owner check failed")) << g_logged;
    }
    QXMutexRelease(mutex);
    EXPECT_EQ("", g_logged);
    QXMutexDestroy(mutex);
}

TEST(CheckedMutexAlert, TellsADepthThatCameToNothing) {
    QXErrorAlertSetMethod(QX_ALERT_EVENTLOG);
    QXHandle mutex = nullptr;
    ASSERT_EQ(QX_S_OK, QXMutexCreate("", QX_MUTEX_CHECKED, &mutex));
    for (int depth = 0; depth < 0x10000; ++depth) {
        QXMutexAcquire(mutex);
    }
    EXPECT_EQ(QX_E_FAIL, QXMutexRelease(mutex));
    EXPECT_TRUE(Says("CQXCoreMutexChecked::preRelease m_lockDepth check failed")) << g_logged;
    QXMutexDestroy(mutex);
}

}  // namespace

// A report of lock statistics in a directory of the test's own.
#ifndef TESTS_SYNC_LOCK_REPORT_SUPPORT_H
#define TESTS_SYNC_LOCK_REPORT_SUPPORT_H

#include <gtest/gtest.h>
#include <qxcore.h>

#include <string>
#include <vector>

#include "support/temporary_directory.h"

class LockReport : public testing::Test {
  protected:
    void TearDown() override {
        for (const QXHandle mutex : m_mutexes) {
            QXMutexDestroy(mutex);
        }
        QXResetLockStats();
    }

    // One that ends with the test.
    QXHandle NewMutex(const char* name, uint32_t flags = QX_MUTEX_STATS) {
        QXHandle mutex = nullptr;
        EXPECT_EQ(QX_S_OK, QXMutexCreate(name, flags, &mutex));
        m_mutexes.push_back(mutex);
        return mutex;
    }
    static void Hold(QXHandle mutex) {
        QXMutexAcquire(mutex);
        QXMutexRelease(mutex);
    }
    std::filesystem::path Path() const { return m_directory.Path() / "report.csv"; }
    QXResult Dump(const char* title = "t") const {
        return QXDumpLockStats(title, Path().u16string().c_str());
    }
    std::string Text() const { return ReadTextFile(Path()); }

    TemporaryDirectory m_directory;
    std::vector<QXHandle> m_mutexes;
};

#endif

// The figures of measured mutexes, and the report on them.
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <map>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "support/failure.h"
#include "sync/lock_report_support.h"

namespace {

QXLockStats StatsOf(QXHandle mutex) {
    QXLockStats stats;
    EXPECT_EQ(QX_S_OK, QXGetLockStats(mutex, &stats));
    return stats;
}

bool IsAllZero(const QXLockStats& stats) {
    constexpr QXLockStats kZero{};
    return std::memcmp(&stats, &kZero, sizeof stats) == 0;
}

using LockStats = LockReport;

// Runs for at least so long.
void Work(int microseconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(microseconds);
    while (std::chrono::steady_clock::now() < end) {
    }
}

TEST_F(LockStats, RecursionIsCountedAndMeasuredOnce) {
    const QXHandle mutex = NewMutex("");
    QXMutexTryAcquire(mutex);
    QXMutexAcquire(mutex);
    QXMutexAcquire(mutex);
    Work(300);
    for (int depth = 3; depth > 0; --depth) {
        EXPECT_EQ(0, StatsOf(mutex).totalHeldTime);
        QXMutexRelease(mutex);
    }
    const QXLockStats once = StatsOf(mutex);
    EXPECT_EQ(3, once.acquireCount);
    EXPECT_EQ(3, once.heldCount);
    EXPECT_EQ(0, once.totalAcquireTime);  // a try does not wait, nor does who holds it already
    EXPECT_LE(300, once.totalHeldTime);
    EXPECT_EQ(once.totalHeldTime, once.maxHeldTime);
    Hold(mutex);
    EXPECT_EQ(once.maxHeldTime, StatsOf(mutex).maxHeldTime);
}

TEST_F(LockStats, AHoldThatSpansAResetIsMeasuredInFull) {
    const QXHandle mutex = NewMutex("");
    Hold(mutex);
    const auto start = std::chrono::steady_clock::now();
    QXMutexAcquire(mutex);
    Work(2000);
    EXPECT_EQ(QX_S_OK, QXResetLockStats());
    EXPECT_TRUE(IsAllZero(StatsOf(mutex)));
    QXMutexRelease(mutex);
    const std::chrono::duration<double, std::micro> most = std::chrono::steady_clock::now() - start;
    EXPECT_LE(2000, StatsOf(mutex).maxHeldTime);
    EXPECT_GE(2 * most.count(), static_cast<double>(StatsOf(mutex).maxHeldTime));
    EXPECT_EQ(0, StatsOf(mutex).acquireCount);
    EXPECT_EQ(1, StatsOf(mutex).heldCount);
}

TEST_F(LockStats, WaitsAndContentionAreMeasured) {
    const QXHandle mutex = NewMutex("");
    // Whether a waiter has come to block cannot be seen from outside, so it is tried until one has.
    while (StatsOf(mutex).contentionCount == 0) {
        QXMutexAcquire(mutex);
        std::atomic<bool> started{false};
        std::thread waiter([&] {
            started = true;
            Hold(mutex);
        });
        while (!started) {
            std::this_thread::yield();
        }
        Work(3000);
        QXMutexRelease(mutex);
        waiter.join();
    }
    EXPECT_LE(StatsOf(mutex).maxAcquireTime, StatsOf(mutex).totalAcquireTime);
    EXPECT_LT(0, StatsOf(mutex).totalAcquireTime);
    QXResetLockStats();
    EXPECT_EQ(0, StatsOf(mutex).contentionCount);
}

// What is between the three lines of the head and the tail of the first dump.
std::string RowsOf(const std::string& text) {
    std::smatch found;
    std::regex_search(text, found, std::regex("Contention Count\n([^]*?)EndLockStatistics"));
    return found[1];
}

std::string Row(const char* label, QXHandle mutex, const char* name) {
    char address[17];
    std::snprintf(address, sizeof address, "%016llX",
                  static_cast<unsigned long long>(reinterpret_cast<uintptr_t>(mutex)));
    const QXLockStats stats = StatsOf(mutex);
    std::string row = std::string(label) + ":0x" + address + "(" + name + ")";
    for (const int64_t figure :
         {stats.heldCount, stats.totalHeldTime, stats.maxHeldTime, stats.acquireCount,
          stats.totalAcquireTime, stats.maxAcquireTime, stats.contentionCount}) {
        row += "," + std::to_string(figure);
    }
    return row + "\n";
}

TEST_F(LockReport, IsItsTextToTheByteAndIsAppended) {
    const std::string title =
        ": a title, \"odd\" - [01][0-9]/[0-3][0-9]/[0-9]{4} [0-2][0-9]:[0-5][0-9]:[0-6][0-9]\n";
    const std::string expected =
        "BeginLockStatistics" + title +
        "CPU Frequency,1000000\n"
        "Name/Handle,Held Count,Total Held Time,Max Held Time,Acquire Count,Total Acquire Time,"
        "Max Acquire Time,Contention Count\n"
        "EndLockStatistics" +
        title + "\n\n";
    EXPECT_EQ(QX_S_OK, Dump("a title, \"odd\""));
    EXPECT_EQ(QX_S_OK, Dump("a title, \"odd\""));
    EXPECT_TRUE(std::regex_match(Text(), std::regex(expected + expected))) << Text();
}

TEST_F(LockReport, LiveMutexesComeFirstAndEachKindByItsAddress) {
    std::map<QXHandle, const char*> live;
    std::map<QXHandle, const char*> retired;
    for (const char* name : {"", "a,b(c)", "plain name", "\xC3\xA4", "last"}) {
        const QXHandle mutex = NewMutex(name);
        for (int hold = 0; hold < 2; ++hold) {
            QXMutexAcquire(mutex);
            Work(20);
            QXMutexRelease(mutex);
        }
        (live.size() > retired.size() ? retired : live)[mutex] = name;
    }
    for (const auto& [mutex, name] : retired) {
        EXPECT_EQ(0, QXMutexDestroy(mutex));
        std::erase(m_mutexes, mutex);
    }
    const auto rows = [](const char* label, const std::map<QXHandle, const char*>& mutexes) {
        std::string text;
        for (const auto& [mutex, name] : mutexes) {
            text += Row(label, mutex, name);
        }
        return text;
    };
    EXPECT_EQ(QX_S_OK, Dump());
    EXPECT_EQ(rows("QX_MUTEX", live) + rows("QX_DEL_MUTEX", retired), RowsOf(Text()));
    EXPECT_EQ(QX_S_OK, QXResetLockStats());
    std::filesystem::remove(Path());
    EXPECT_EQ(QX_S_OK, Dump());
    EXPECT_TRUE(IsAllZero(StatsOf(live.begin()->first)));
    EXPECT_EQ(rows("QX_MUTEX", live), RowsOf(Text()));
}

TEST_F(LockReport, NullMeansTheUsualTitleAndFile) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(m_directory.Path());
    EXPECT_EQ(QX_S_OK, QXDumpLockStats(nullptr, nullptr));
    std::filesystem::current_path(before);
    const std::string text = ReadTextFile(m_directory.Path() / "qxlockstats.csv");
    EXPECT_EQ(0u, text.find("BeginLockStatistics: LockStatsDump - ")) << text;
}

TEST_F(LockReport, APathThatCannotBeOpenedIsAResult) {
    const std::filesystem::path missing = m_directory.Path() / "missing" / "report.csv";
    for (const std::u16string& path : {missing.u16string(), m_directory.Path().u16string(), {}}) {
        const ErrnoStays errnoStays;
        EXPECT_EQ(QX_E_FAIL, QXDumpLockStats("t", path.c_str()));
    }
    EXPECT_TRUE(std::filesystem::is_empty(m_directory.Path()));
}

TEST_F(LockReport, IsWholeWhileMutexesComeAndGo) {
    const QXHandle shared = NewMutex("shared");
    std::atomic<int> running{3};
    std::vector<std::thread> threads;
    for (int left = running; left > 0; --left) {
        threads.emplace_back([&] {
            for (int round = 0; round < 300; ++round) {
                QXHandle own = nullptr;
                EXPECT_EQ(QX_S_OK, QXMutexCreate("own", QX_MUTEX_STATS | QX_MUTEX_CHECKED, &own));
                Hold(shared);
                Hold(own);
                EXPECT_EQ(0, QXMutexDestroy(own));
            }
            --running;
        });
    }
    do {
        EXPECT_EQ(QX_S_OK, Dump());
        EXPECT_EQ(QX_S_OK, QXResetLockStats());
    } while (running != 0);
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::regex row("QX_(DEL_)?MUTEX:0x[0-9A-F]{16}\\((shared|own)\\)(,[0-9]+){7}");
    std::istringstream file(Text());
    for (std::string line; std::getline(file, line);) {
        EXPECT_TRUE(line.find(":0x") == line.npos || std::regex_match(line, row)) << line;
    }
}

}  // namespace

// A mutex that nobody else wants, beside the recursive mutex of the C library; the measured and the
// checked one beside the plain one; a report beside the writing of its text.
#include <benchmark/benchmark.h>
#include <pthread.h>
#include <qxcore.h>
#include <time.h>

#include <filesystem>
#include <fstream>
#include <latch>
#include <string>
#include <thread>
#include <vector>

namespace {

// The C library leaves locked instructions out while a process has one thread. A second one, which
// only waits, measures the other case.
class SleepingThread {
  public:
    explicit SleepingThread(bool wanted) {
        if (wanted) {
            m_thread = std::thread([this] { m_end.wait(); });
        }
    }
    ~SleepingThread() {
        if (m_thread.joinable()) {
            m_end.count_down();
            m_thread.join();
        }
    }

  private:
    std::latch m_end{1};
    std::thread m_thread;
};

void MutexPair(benchmark::State& state, uint32_t flags) {
    const SleepingThread other(state.range(0) != 0);
    QXHandle mutex;
    QXMutexCreate("bench", flags, &mutex);
    for (auto _ : state) {
        QXMutexAcquire(mutex);
        benchmark::ClobberMemory();
        QXMutexRelease(mutex);
    }
    QXMutexDestroy(mutex);
}

void PlainPair(benchmark::State& state) {
    MutexPair(state, 0);
}

void CheckedPair(benchmark::State& state) {
    MutexPair(state, QX_MUTEX_CHECKED);
}

void MeasuredPair(benchmark::State& state) {
    MutexPair(state, QX_MUTEX_STATS);
}

void ReadClock() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    benchmark::DoNotOptimize(now);
}

// As much as a measured pair may cost: it reads the clock three times.
void PlainPairAndClockReads(benchmark::State& state) {
    const SleepingThread other(state.range(0) != 0);
    QXHandle mutex;
    QXMutexCreate("bench", 0, &mutex);
    for (auto _ : state) {
        ReadClock();
        QXMutexAcquire(mutex);
        ReadClock();
        QXMutexRelease(mutex);
        ReadClock();
    }
    QXMutexDestroy(mutex);
}

void RecursivePthreadPair(benchmark::State& state) {
    const SleepingThread other(state.range(0) != 0);
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_t mutex;
    pthread_mutex_init(&mutex, &attributes);
    for (auto _ : state) {
        pthread_mutex_lock(&mutex);
        benchmark::ClobberMemory();
        pthread_mutex_unlock(&mutex);
    }
    pthread_mutex_destroy(&mutex);
    pthread_mutexattr_destroy(&attributes);
}

class MeasuredMutexes {
  public:
    explicit MeasuredMutexes(int64_t count) : m_handles(static_cast<size_t>(count)) {
        for (QXHandle& handle : m_handles) {
            QXMutexCreate("a name of usual length::m_mutex", QX_MUTEX_STATS, &handle);
        }
    }
    ~MeasuredMutexes() {
        for (const QXHandle handle : m_handles) {
            QXMutexDestroy(handle);
        }
        QXResetLockStats();
    }

  private:
    std::vector<QXHandle> m_handles;
};

std::filesystem::path ReportPath() {
    return std::filesystem::temp_directory_path() / "qxcore-mutex-bench.csv";
}

void DumpReport(benchmark::State& state) {
    const MeasuredMutexes mutexes(state.range(0));
    const std::u16string path = ReportPath().u16string();
    for (auto _ : state) {
        QXDumpLockStats("bench", path.c_str());
        std::filesystem::remove(ReportPath());
    }
}

// The same lines, each flushed.
void WriteReportText(benchmark::State& state) {
    std::vector<std::string> lines;
    {
        const MeasuredMutexes mutexes(state.range(0));
        QXDumpLockStats("bench", ReportPath().u16string().c_str());
        std::ifstream report(ReportPath());
        for (std::string line; std::getline(report, line);) {
            lines.push_back(line);
        }
        std::filesystem::remove(ReportPath());
    }
    for (auto _ : state) {
        std::ofstream report(ReportPath(), std::ios::app);
        for (const std::string& line : lines) {
            report << line << std::endl;
        }
        report.close();
        std::filesystem::remove(ReportPath());
    }
}

BENCHMARK(DumpReport)->Name("QXDumpLockStats")->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteReportText)->Name("its text, written")->Arg(10000)->Unit(benchmark::kMillisecond);

// The threads that were started make the process one of several threads for good, so the pairs
// without any come first.
BENCHMARK(PlainPair)->Name("QXMutex pair, one thread")->Arg(0);
BENCHMARK(RecursivePthreadPair)->Name("recursive pthread pair, one thread")->Arg(0);
BENCHMARK(CheckedPair)->Name("checked QXMutex pair, one thread")->Arg(0);
BENCHMARK(MeasuredPair)->Name("measured QXMutex pair, one thread")->Arg(0);
BENCHMARK(PlainPairAndClockReads)->Name("QXMutex pair and three clock reads, one thread")->Arg(0);
BENCHMARK(PlainPair)->Name("QXMutex pair, several threads")->Arg(1);
BENCHMARK(RecursivePthreadPair)->Name("recursive pthread pair, several threads")->Arg(1);
BENCHMARK(CheckedPair)->Name("checked QXMutex pair, several threads")->Arg(1);
BENCHMARK(MeasuredPair)->Name("measured QXMutex pair, several threads")->Arg(1);
BENCHMARK(PlainPairAndClockReads)
    ->Name("QXMutex pair and three clock reads, several threads")
    ->Arg(1);

}  // namespace

// A mutex that nobody else wants, beside the recursive mutex of the C library.
#include <benchmark/benchmark.h>
#include <pthread.h>
#include <qxcore/mutex.h>

#include <latch>
#include <thread>

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

void QXMutexPair(benchmark::State& state) {
    const SleepingThread other(state.range(0) != 0);
    QXHandle mutex;
    QXMutexCreate("bench", 0, &mutex);
    for (auto _ : state) {
        QXMutexAcquire(mutex);
        benchmark::ClobberMemory();
        QXMutexRelease(mutex);
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

// The threads that were started make the process one of several threads for good, so the pairs
// without any come first.
BENCHMARK(QXMutexPair)->Name("QXMutex pair, one thread")->Arg(0);
BENCHMARK(RecursivePthreadPair)->Name("recursive pthread pair, one thread")->Arg(0);
BENCHMARK(QXMutexPair)->Name("QXMutex pair, several threads")->Arg(1);
BENCHMARK(RecursivePthreadPair)->Name("recursive pthread pair, several threads")->Arg(1);

}  // namespace

// The reader/writer lock beside that of the C library and beside what it is made of, and the mutex
// that two threads want.
#include <benchmark/benchmark.h>
#include <pthread.h>
#include <qxcore/event.h>
#include <qxcore/mutex.h>
#include <qxcore/rwlock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace {

const bool s_severalThreads = (std::thread([] {}).join(), true);

struct Lock {
    Lock() { QXRWLockCreate("bench", 0, &m_handle); }
    ~Lock() { QXRWLockDestroy(m_handle); }
    QXHandle m_handle;
};

void ReadHold(benchmark::State& state) {
    Lock lock;
    const bool again = state.range(0) != 0;
    if (again) {
        QXRWLockAcquireRead(lock.m_handle);
    }
    for (auto _ : state) {
        QXRWLockAcquireRead(lock.m_handle);
        QXRWLockReleaseRead(lock.m_handle);
    }
    if (again) {
        QXRWLockReleaseRead(lock.m_handle);
    }
}

void WriteHold(benchmark::State& state) {
    Lock lock;
    for (auto _ : state) {
        QXRWLockAcquireWrite(lock.m_handle);
        QXRWLockReleaseWrite(lock.m_handle);
    }
}

void PthreadHold(benchmark::State& state) {
    pthread_rwlock_t lock = PTHREAD_RWLOCK_INITIALIZER;
    const bool writes = state.range(0) != 0;
    for (auto _ : state) {
        writes ? pthread_rwlock_wrlock(&lock) : pthread_rwlock_rdlock(&lock);
        pthread_rwlock_unlock(&lock);
    }
    pthread_rwlock_destroy(&lock);
}

// What a first read hold is made of.
void MutexPairsAndGate(benchmark::State& state) {
    QXHandle mutex;
    QXHandle gate;
    QXMutexCreate("bench", 0, &mutex);
    QXGateCreate("bench", 0, &gate);
    const int64_t pairs = state.range(0);
    for (auto _ : state) {
        for (int64_t pair = 0; pair < pairs; ++pair) {
            QXMutexAcquire(mutex);
            QXMutexRelease(mutex);
        }
        if (state.range(1) != 0) {
            QXGateClose(gate);
            QXGateOpen(gate);
        }
    }
    QXGateDestroy(gate);
    QXMutexDestroy(mutex);
}

BENCHMARK(ReadHold)->Name("QXRWLock read and release, first and again")->Arg(0)->Arg(1);
BENCHMARK(MutexPairsAndGate)
    ->Name("mutex pairs and a gate's closing and opening")
    ->Args({1, 0})
    ->Args({2, 1})
    ->Args({4, 1});
BENCHMARK(WriteHold)->Name("QXRWLock write and release");
BENCHMARK(PthreadHold)->Name("pthread_rwlock, read and write")->Arg(0)->Arg(1);

struct Mutex {
    explicit Mutex(uint32_t flags = 0) { QXMutexCreate("bench", flags, &m_handle); }
    ~Mutex() { QXMutexDestroy(m_handle); }
    void Acquire() { QXMutexAcquire(m_handle); }
    void Release() { QXMutexRelease(m_handle); }
    QXHandle m_handle;
};

struct SpinningMutex : Mutex {
    SpinningMutex() : Mutex(QX_MUTEX_SPIN) {}
};

struct PthreadMutex {
    void Acquire() { pthread_mutex_lock(&m_mutex); }
    void Release() { pthread_mutex_unlock(&m_mutex); }
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

struct AdaptivePthreadMutex : PthreadMutex {
    AdaptivePthreadMutex() { m_mutex = PTHREAD_ADAPTIVE_MUTEX_INITIALIZER_NP; }
};

// Two threads for a second: how often they had the lock, and the share of the one that had it less
// often.
template <typename Kind>
void Contended(benchmark::State& state) {
    for (auto _ : state) {
        Kind mutex;
        std::atomic<bool> stop{false};
        int64_t holds[2] = {};
        const auto run = [&](int64_t& mine) {
            while (!stop.load(std::memory_order_relaxed)) {
                mutex.Acquire();
                benchmark::DoNotOptimize(++mine);
                mutex.Release();
            }
        };
        std::thread first(run, std::ref(holds[0]));
        std::thread second(run, std::ref(holds[1]));
        std::this_thread::sleep_for(std::chrono::seconds(1));
        stop = true;
        first.join();
        second.join();
        const double total = static_cast<double>(holds[0] + holds[1]);
        state.counters["holds/s"] = total;
        state.counters["lesser share"] = static_cast<double>(std::min(holds[0], holds[1])) / total;
    }
}

BENCHMARK(Contended<PthreadMutex>)
    ->Name("two threads, pthread mutex")
    ->Iterations(1)
    ->UseRealTime();
BENCHMARK(Contended<Mutex>)->Name("two threads, QXMutex")->Iterations(1)->UseRealTime();
BENCHMARK(Contended<AdaptivePthreadMutex>)
    ->Name("two threads, adaptive pthread mutex")
    ->Iterations(1)
    ->UseRealTime();
BENCHMARK(Contended<SpinningMutex>)
    ->Name("two threads, QXMutex that spins")
    ->Iterations(1)
    ->UseRealTime();

}  // namespace

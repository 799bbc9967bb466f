// Events, semaphores, gates and conditions beside the C library's semaphore.
#include <benchmark/benchmark.h>
#include <qxcore/condition.h>
#include <qxcore/event.h>
#include <qxcore/semaphore.h>
#include <semaphore.h>

#include <thread>

namespace {

// The C library leaves locked instructions out while a process has had one thread only.
const bool s_severalThreads = (std::thread([] {}).join(), true);

struct Event {
    Event() { QXEventCreate("bench", 0, &m_handle); }
    ~Event() { QXEventDestroy(m_handle); }
    void Signal() { QXEventSignal(m_handle); }
    void Wait() { QXEventWait(m_handle); }
    QXHandle m_handle;
};

struct Semaphore {
    Semaphore() { QXSemaphoreCreate(0, "bench", 0, &m_handle); }
    ~Semaphore() { QXSemaphoreDestroy(m_handle); }
    void Signal() { QXSemaphorePost(m_handle); }
    void Wait() { QXSemaphoreWait(m_handle); }
    QXHandle m_handle;
};

struct CSemaphore {
    CSemaphore() { sem_init(&m_semaphore, 0, 0); }
    ~CSemaphore() { sem_destroy(&m_semaphore); }
    void Signal() { sem_post(&m_semaphore); }
    void Wait() { sem_wait(&m_semaphore); }
    sem_t m_semaphore;
};

template <typename Object>
void SignalAndWait(benchmark::State& state) {
    Object object;
    for (auto _ : state) {
        object.Signal();
        object.Wait();
    }
}

template <typename Object>
void PingPong(benchmark::State& state) {
    Object there;
    Object back;
    bool stop = false;
    std::thread other([&] {
        for (;;) {
            there.Wait();
            if (stop) {
                return;
            }
            back.Signal();
        }
    });
    for (auto _ : state) {
        there.Signal();
        back.Wait();
    }
    stop = true;
    there.Signal();
    other.join();
}

void GateTryWait(benchmark::State& state) {
    QXHandle gate;
    QXGateCreate("bench", 0, &gate);
    if (state.range(0) != 0) {
        QXGateOpen(gate);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(QXGateTryWait(gate));
    }
    QXGateDestroy(gate);
}

void GateOpenAndClose(benchmark::State& state) {
    QXHandle gate;
    QXGateCreate("bench", 0, &gate);
    for (auto _ : state) {
        QXGateOpen(gate);
        QXGateClose(gate);
    }
    QXGateDestroy(gate);
}

void ConditionSignal(benchmark::State& state) {
    QXHandle condition;
    QXConditionCreate("bench", 0, &condition);
    for (auto _ : state) {
        QXConditionSignal(condition);
    }
    QXConditionDestroy(condition);
}

BENCHMARK(SignalAndWait<CSemaphore>)->Name("sem_post and sem_wait");
BENCHMARK(SignalAndWait<Semaphore>)->Name("QXSemaphore post and wait");
BENCHMARK(SignalAndWait<Event>)->Name("QXEvent signal and wait");
BENCHMARK(GateTryWait)->Name("QXGateTryWait, closed and open")->Arg(0)->Arg(1);
BENCHMARK(GateOpenAndClose)->Name("QXGate open and close");
BENCHMARK(ConditionSignal)->Name("QXConditionSignal, nobody waiting");
BENCHMARK(PingPong<CSemaphore>)->Name("ping-pong over two sem_t")->UseRealTime();
BENCHMARK(PingPong<Semaphore>)->Name("ping-pong over two QXSemaphores")->UseRealTime();
BENCHMARK(PingPong<Event>)->Name("ping-pong over two QXEvents")->UseRealTime();

}  // namespace

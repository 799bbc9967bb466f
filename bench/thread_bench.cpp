// Starting and joining a thread, beside the C library's; a named semaphore that nobody else wants,
// beside the unnamed ones.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <pthread.h>
#include <qxcore.h>
#include <semaphore.h>
#include <unistd.h>

#include <string>

namespace {

void* DoNothing(void*) {
    return nullptr;
}

void QXThreadStartAndJoin(benchmark::State& state) {
    for (auto _ : state) {
        QXHandle thread;
        uint32_t id;
        QXThreadCreate(DoNothing, nullptr, nullptr, 0, &thread, &id);
        QXThreadJoin(thread, nullptr);
    }
}

void PthreadStartAndJoin(benchmark::State& state) {
    for (auto _ : state) {
        pthread_t thread;
        pthread_create(&thread, nullptr, DoNothing, nullptr);
        pthread_join(thread, nullptr);
    }
}

void QXNamedSemPair(benchmark::State& state) {
    QXHandle semaphore;
    QXNamedSemOpen(("bench-" + std::to_string(getpid())).c_str(), 0, &semaphore);
    for (auto _ : state) {
        QXNamedSemPost(semaphore);
        QXNamedSemWait(semaphore);
    }
    QXNamedSemClose(semaphore);
}

void QXSemaphorePair(benchmark::State& state) {
    QXHandle semaphore;
    QXSemaphoreCreate(0, nullptr, 0, &semaphore);
    for (auto _ : state) {
        QXSemaphorePost(semaphore);
        QXSemaphoreWait(semaphore);
    }
    QXSemaphoreDestroy(semaphore);
}

void UnnamedSemPair(benchmark::State& state) {
    sem_t semaphore;
    sem_init(&semaphore, 1, 0);
    for (auto _ : state) {
        sem_post(&semaphore);
        sem_wait(&semaphore);
    }
    sem_destroy(&semaphore);
}

void QXNamedSemOpenAndClose(benchmark::State& state) {
    const std::string name = "bench-" + std::to_string(getpid());
    for (auto _ : state) {
        QXHandle semaphore;
        QXNamedSemOpen(name.c_str(), 0, &semaphore);
        QXNamedSemClose(semaphore);
    }
}

void SemOpenAndClose(benchmark::State& state) {
    const std::string name = "/bench-" + std::to_string(getpid());
    for (auto _ : state) {
        sem_t* const semaphore = sem_open(name.c_str(), O_CREAT, 0666, 0);
        sem_close(semaphore);
        sem_unlink(name.c_str());
    }
}

BENCHMARK(QXThreadStartAndJoin)->Name("QXThread start and join")->UseRealTime();
BENCHMARK(PthreadStartAndJoin)->Name("pthread start and join")->UseRealTime();
BENCHMARK(QXNamedSemPair)->Name("QXNamedSem post and wait");
BENCHMARK(QXSemaphorePair)->Name("QXSemaphore post and wait");
BENCHMARK(UnnamedSemPair)->Name("sem_t post and wait");
BENCHMARK(QXNamedSemOpenAndClose)->Name("QXNamedSem open and close");
BENCHMARK(SemOpenAndClose)->Name("sem_open, close and unlink");

}  // namespace

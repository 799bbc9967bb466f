// A child that ends at once, started and collected: ours beside posix_spawn and waitpid by hand.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <qxcore.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <ctime>

namespace {

// Memory that the parent uses for as long as this lives.
class Resident {
  public:
    explicit Resident(std::size_t size)
        : m_size(size),
          m_memory(size == 0 ? nullptr
                             : ::mmap(nullptr, size, PROT_READ | PROT_WRITE,
                                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0)) {}
    ~Resident() {
        if (m_memory != nullptr) {
            ::munmap(m_memory, m_size);
        }
    }
    Resident(const Resident&) = delete;
    Resident& operator=(const Resident&) = delete;

    bool IsThere() const { return m_memory != MAP_FAILED; }

  private:
    std::size_t m_size;
    void* m_memory;
};

bool RunOurs(bool pipes) {
    QXHandle ends[3] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE, QX_INVALID_HANDLE};
    QXHandle child = nullptr;
    uint32_t code = 1;
    if (QX_FAILED(QXProcessCreate(u"/bin/true", nullptr, nullptr, nullptr, 0,
                                  pipes ? ends : nullptr, &child))) {
        return false;
    }
    for (const QXHandle end : ends) {
        if (pipes) {
            QXFileClose(end);
        }
    }
    return QX_SUCCEEDED(QXProcessJoin(child, &code)) && code == 0;
}

bool RunByHand(bool pipes) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    int ends[3][2];
    for (int slot = 0; pipes && slot < 3; ++slot) {
        if (::pipe2(ends[slot], O_CLOEXEC) != 0) {
            return false;
        }
        posix_spawn_file_actions_adddup2(&actions, ends[slot][slot == 0 ? 0 : 1], slot);
    }
    char program[] = "/bin/true";
    char* const arguments[] = {program, nullptr};
    pid_t child = 0;
    const int error = ::posix_spawn(&child, program, &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    for (int slot = 0; pipes && slot < 3; ++slot) {
        ::close(ends[slot][0]);
        ::close(ends[slot][1]);
    }
    int status = 1;
    return error == 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

// Pipes or none, and the parent's resident GiB. In turn, so that a busy machine meets both alike.
void StartAndCollect(benchmark::State& state) {
    const bool pipes = state.range(0) != 0;
    const Resident resident(static_cast<std::size_t>(state.range(1)) << 30);
    if (!resident.IsThere()) {
        state.SkipWithError("no memory");
        return;
    }
    double ours = 0;
    double byHand = 0;
    const auto timed = [&state, pipes](bool (*run)(bool)) {
        timespec begin;
        timespec end;
        ::clock_gettime(CLOCK_MONOTONIC, &begin);
        if (!run(pipes)) {
            state.SkipWithError("a child failed");
        }
        ::clock_gettime(CLOCK_MONOTONIC, &end);
        return static_cast<double>(end.tv_sec - begin.tv_sec) +
               static_cast<double>(end.tv_nsec - begin.tv_nsec) * 1e-9;
    };
    for (auto _ : state) {
        ours += timed(RunOurs);
        byHand += timed(RunByHand);
    }
    const auto average = benchmark::Counter::kAvgIterations;
    state.counters["ours"] = benchmark::Counter(ours, average);
    state.counters["by_hand"] = benchmark::Counter(byHand, average);
    state.counters["ratio"] = ours / byHand;
}
BENCHMARK(StartAndCollect)
    ->ArgNames({"pipes", "gib"})
    ->ArgsProduct({{0, 1}, {0, 2}})
    ->UseRealTime();

}  // namespace

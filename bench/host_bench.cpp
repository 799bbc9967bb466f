// Whether a name is this host, beside the resolver's answer to the same.
#include <benchmark/benchmark.h>
#include <netdb.h>
#include <qxcore/host.h>

namespace {

void HostKnown(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(QXIsThisMyComputerA("LocalHost"));
    }
}
BENCHMARK(HostKnown)->Name("host: a known name/ours");

void HostResolved(benchmark::State& state) {
    for (auto _ : state) {
        addrinfo* list = nullptr;
        benchmark::DoNotOptimize(getaddrinfo("127.0.0.1", nullptr, nullptr, &list));
        freeaddrinfo(list);
    }
}
BENCHMARK(HostResolved)->Name("host: a known name/getaddrinfo of an address");

}  // namespace

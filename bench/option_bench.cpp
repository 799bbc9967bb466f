// The option parser beside the C library's, over one vector of 20 elements.
#include <benchmark/benchmark.h>
#include <getopt.h>
#include <qxcore/option.h>

#include <algorithm>
#include <vector>

namespace {

char* g_elements[] = {
    const_cast<char*>("prog"),     const_cast<char*>("--verbose"), const_cast<char*>("input"),
    const_cast<char*>("--output"), const_cast<char*>("file"),      const_cast<char*>("-level=3"),
    const_cast<char*>("--quiet"),  const_cast<char*>("another"),   const_cast<char*>("--name"),
    const_cast<char*>("x"),        const_cast<char*>("--verb"),    const_cast<char*>("-outp"),
    const_cast<char*>("file"),     const_cast<char*>("third"),     const_cast<char*>("--level"),
    const_cast<char*>("9"),        const_cast<char*>("--quiet"),   const_cast<char*>("--recursive"),
    const_cast<char*>("fourth"),   const_cast<char*>("--name=y"),  nullptr};
constexpr int kCount = 20;

// Both parsers permute the vector, so each round has a fresh one.
template <typename Parse>
void ParseAll(benchmark::State& state, Parse parse) {
    std::vector<char*> vector(std::size(g_elements));
    for (auto _ : state) {
        std::copy(std::begin(g_elements), std::end(g_elements), vector.begin());
        benchmark::DoNotOptimize(parse(vector.data()));
    }
}

void OptionOurs(benchmark::State& state) {
    static const QXOptionRecord records[] = {
        {"verbose", 0, 1}, {"output", 1, 2},    {"level", 1, 3}, {"quiet", 0, 4},
        {"name", 1, 5},    {"recursive", 0, 6}, {nullptr, 0, 0}};
    ParseAll(state, [](char** vector) {
        QXGetOptionIndex = 0;
        int32_t sum = 0;
        for (int32_t found; (found = QXGetOption(kCount, vector, records, nullptr)) != -1;) {
            sum += found;
        }
        return sum;
    });
}
BENCHMARK(OptionOurs)->Name("options: 20 elements/ours");

void OptionGetopt(benchmark::State& state) {
    static const option records[] = {{"verbose", no_argument, nullptr, 1},
                                     {"output", required_argument, nullptr, 2},
                                     {"level", required_argument, nullptr, 3},
                                     {"quiet", no_argument, nullptr, 4},
                                     {"name", required_argument, nullptr, 5},
                                     {"recursive", no_argument, nullptr, 6},
                                     {nullptr, 0, nullptr, 0}};
    ParseAll(state, [](char** vector) {
        optind = 0;
        int sum = 0;
        for (int found; (found = getopt_long_only(kCount, vector, "", records, nullptr)) != -1;) {
            sum += found;
        }
        return sum;
    });
}
BENCHMARK(OptionGetopt)->Name("options: 20 elements/getopt_long_only");

}  // namespace

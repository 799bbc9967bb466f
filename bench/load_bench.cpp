// What loading costs: each figure is the median over fresh processes of one dlopen.
//   load_bench LIBRARY EMPTY_LIBRARY
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr int kProcesses = 200;
constexpr char kSample[] = "--sample";
constexpr char kSetLocale[] = "setlocale";
constexpr char kSqlite[] = "libsqlite3.so.0";

void Open(const char* library) {
    if (dlopen(library, RTLD_LAZY) == nullptr) {
        std::fprintf(stderr, "%s\n", dlerror());
        std::exit(1);
    }
}

// In the fresh process: opens the libraries behind the first, then times the first.
int PrintSample(const std::vector<const char*>& libraries) {
    std::for_each(libraries.begin() + 1, libraries.end(), Open);
    const auto begin = std::chrono::steady_clock::now();
    if (std::string_view(libraries[0]) == kSetLocale) {
        std::setlocale(LC_ALL, "");
    } else {
        Open(libraries[0]);
    }
    const auto took = std::chrono::steady_clock::now() - begin;
    std::printf("%f\n", std::chrono::duration<double, std::micro>(took).count());
    return 0;
}

double Sample(const std::string& command) {
    FILE* const process = popen(command.c_str(), "r");
    double time = 0;
    if (process == nullptr || std::fscanf(process, "%lf", &time) != 1 || pclose(process) != 0) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        std::exit(1);
    }
    return time;
}

void Report(const char* what, const std::vector<std::string>& libraries) {
    std::string command = std::string("exec /proc/") + std::to_string(getpid()) + "/exe " + kSample;
    for (const std::string& library : libraries) {
        command += " '" + library + "'";
    }
    std::vector<double> times;
    while (times.size() < kProcesses) {
        times.push_back(Sample(command));
    }
    std::nth_element(times.begin(), times.begin() + kProcesses / 2, times.end());
    std::printf("%-48s %8.1f us\n", what, times[kProcesses / 2]);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 2 && std::string_view(argv[1]) == kSample) {
        return PrintSample({argv + 2, argv + argc});
    }
    if (argc != 3) {
        std::fprintf(stderr, "usage: load_bench LIBRARY EMPTY_LIBRARY\n");
        return 2;
    }
    const std::string library = argv[1];
    const std::string empty = argv[2];
    Report("SQLite, loaded by the first use of the registry", {kSqlite});
    Report("ICU uc", {QXCORE_ICU_LIBRARY});
    Report("ICU io and i18n, loaded by the first line file",
           {QXCORE_ICU_STREAMS, QXCORE_ICU_LIBRARY});
    Report("the library and all that it links", {library});
    Report("the library, what it links being there", {library, QXCORE_ICU_LIBRARY});
    Report("an empty library, likewise", {empty, QXCORE_ICU_LIBRARY});
    Report("setlocale(LC_ALL, \"\"), a part of the library's", {kSetLocale});
    return 0;
}

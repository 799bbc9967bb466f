// The registry beside statements by hand, a memory-mapped tree and a text file in memory: each row
// is a function over the stores of registry_stores/, and each store has the same values of 32
// bytes, a thousand to a key.
//
// Rows about several processes, and about a process's memory or beginning, are measured in children
// of this program: `registry_bench --child ROLE STORE DIRECTORY [NUMBER...]`.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <span>
#include <string>
#include <thread>
#include <vector>

#include "child_program.h"
#include "registry_stores/library.h"
#include "registry_stores/sqlite.h"
#include "registry_stores/values.h"
#ifdef QX_BENCH_LMDB
#include "registry_stores/lmdb.h"
#endif
#ifdef QX_BENCH_GLIB
#include "registry_stores/key_file.h"
#endif

namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;
using Arguments = std::vector<std::string>;

constexpr int kValues = 10'000;
constexpr int kStride = 7919;  // a prime: steps of it come to every value
constexpr char kChild[] = "--child";

double SecondsSince(Clock::time_point begin) {
    return Seconds(Clock::now() - begin).count();
}

// For the length of the program; in it, a folder for each store and number of values.
class Folder {
  public:
    Folder() {
        char name[] = "/tmp/registry_bench.XXXXXX";
        m_path = ::mkdtemp(name);
    }
    ~Folder() { std::filesystem::remove_all(m_path); }

    const std::string& Path() const { return m_path; }

  private:
    std::string m_path;
};

const Folder* s_folder = nullptr;

Child StartChild(const std::string& role, const char* store, const std::string& directory,
                 const std::vector<int>& numbers) {
    Arguments arguments = {kChild, role, store, directory};
    for (const int number : numbers) {
        arguments.push_back(std::to_string(number));
    }
    return Child("/proc/self/exe", arguments);
}

// The folder of a store with so many values, which a child fills when it is asked for first.
template <typename Store>
std::string Filled(int values) {
    const std::string directory =
        s_folder->Path() + "/" + Store::kName + " " + std::to_string(values);
    if (std::filesystem::create_directory(directory)) {
        StartChild("Fill", Store::kName, directory, {values}).Wait();
    }
    return directory;
}

template <typename Store>
Store& OpenedStore() {
    static const std::unique_ptr<Store> store = std::make_unique<Store>(Filled<Store>(kValues));
    return *store;
}

// Places all over a store, in no order.
template <typename Store>
std::vector<typename Store::Place> PlacesAmong(int values, int count, int first = 0) {
    std::vector<typename Store::Place> places;
    for (int64_t step = 0; step < count; ++step) {
        places.push_back(
            Store::PlaceOf(first + static_cast<int>(step * values / count * kStride % values)));
    }
    return places;
}

// Goes round for ever.
template <typename Item>
class Round {
  public:
    explicit Round(std::vector<Item> items) : m_items(std::move(items)) {}
    const Item& Next() {
        m_next = m_next + 1 < m_items.size() ? m_next + 1 : 0;
        return m_items[m_next];
    }

  private:
    std::vector<Item> m_items;
    std::size_t m_next = 0;
};

// What children do. Each gets the store's folder and its numbers, and prints a line.

using Numbers = std::vector<int>;

template <typename Store>
void Fill(const std::string& directory, const Numbers& numbers) {
    Store::Fill(directory, numbers[0]);
}

// Writes the value that a line tells, with the stamp that it tells.
template <typename Store>
void WriteOnDemand(const std::string& directory, const Numbers&) {
    Store store(directory);
    for (int number, stamp; std::cin >> number >> stamp;) {
        Data data = kData;
        data[0] = static_cast<char16_t>(stamp);
        std::cout << store.Set(Store::PlaceOf(number), data) << std::endl;
    }
}

// Calls for so many milliseconds once it is told to, and prints how many calls there were.
template <typename Call>
void Repeat(int milliseconds, Call&& call) {
    std::string go;
    std::cout << "ready" << std::endl;
    std::getline(std::cin, go);
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    int64_t count = 0;
    for (; Clock::now() < end; ++count) {
        call();
    }
    std::cout << count << std::endl;
}

constexpr int kGetsBetweenLooks = 100;

template <typename Store>
void ReadAlong(const std::string& directory, const Numbers& numbers) {
    Store store(directory);
    Round places(PlacesAmong<Store>(kValues, 1000));
    Repeat(numbers[0], [&] {
        for (int i = 0; i < kGetsBetweenLooks; ++i) {
            Data data;
            store.Get(places.Next(), &data);
        }
    });
}

template <typename Store>
void WriteAlong(const std::string& directory, const Numbers& numbers) {
    Store store(directory);
    Round places(PlacesAmong<Store>(kValues, 1000));
    Data data = kData;
    Repeat(numbers[0], [&] {
        ++data[0];
        store.Set(places.Next(), data);
        if (numbers[1] != 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(numbers[1]));
        }
    });
}

int64_t ResidentBytes() {
    int64_t mapped = 0;
    int64_t resident = 0;
    std::ifstream("/proc/self/statm") >> mapped >> resident;
    return resident * ::sysconf(_SC_PAGESIZE);
}

template <typename Store>
void Grow(const std::string& directory, const Numbers& numbers) {
    Store store(directory);
    const auto places = PlacesAmong<Store>(numbers[0], numbers[0]);
    Data data;
    store.Get(places[0], &data);
    const int64_t before = ResidentBytes();
    for (const auto& place : places) {
        store.Get(place, &data);
    }
    std::cout << ResidentBytes() - before << std::endl;
}

template <typename Store>
void GetOnce(const std::string& directory, const Numbers& numbers) {
    const auto place = Store::PlaceOf(numbers[0] / 2);
    const auto begin = Clock::now();
    Store store(directory);
    Data data;
    const bool found = store.Get(place, &data);
    std::cout << (found ? SecondsSince(begin) : -1) << std::endl;
}

// The time of a get among so many values of which so many are asked for, once all were.
template <typename Store>
void GetAmong(const std::string& directory, const Numbers& numbers) {
    Store store(directory);
    const int asked = numbers[1];
    Round places(PlacesAmong<Store>(numbers[0], asked));
    const auto gets = [&](int count) {
        const auto begin = Clock::now();
        for (int i = 0; i < count; ++i) {
            Data data;
            if (!store.Get(places.Next(), &data)) {
                return -1.0;
            }
        }
        return SecondsSince(begin) / count;
    };
    gets(asked);
    std::cout << gets(std::max(asked, kValues)) << std::endl;
}

// What is measured in this process. What is read was read once before.

template <typename Store>
Round<typename Store::Place> AskedPlaces(Store& store, int first = 0) {
    auto places = PlacesAmong<Store>(kValues, kValues, first);
    for (const auto& place : places) {
        Data data;
        store.Get(place, &data);
    }
    return Round(std::move(places));
}

template <typename Store>
void Get(benchmark::State& state) {
    Store& store = OpenedStore<Store>();
    Round places = AskedPlaces(store);
    for (auto _ : state) {
        Data data;
        if (!store.Get(places.Next(), &data)) {
            state.SkipWithError("a value is missing");
        }
        benchmark::DoNotOptimize(data);
    }
}

template <typename Store>
void GetAbsent(benchmark::State& state) {
    Store& store = OpenedStore<Store>();
    Round places = AskedPlaces(store, kAbsent);
    for (auto _ : state) {
        Data data;
        if (store.Get(places.Next(), &data)) {
            state.SkipWithError("a value is there");
        }
    }
}

// Another process writes the value that is asked for; the get alone is timed.
template <typename Store>
void GetAfterForeignWrite(benchmark::State& state) {
    Store& store = OpenedStore<Store>();
    Child writer = StartChild("WriteOnDemand", Store::kName, Filled<Store>(kValues), {});
    int stamp = 0;
    for (auto _ : state) {
        const int number = ++stamp * kStride % kValues;
        const auto place = Store::PlaceOf(number);
        writer.Write(std::to_string(number) + " " + std::to_string(stamp));
        writer.Read();
        Data data = {};
        const auto begin = Clock::now();
        store.Get(place, &data);
        state.SetIterationTime(SecondsSince(begin));
        if (data[0] != static_cast<char16_t>(stamp)) {
            state.SkipWithError("the value is an old one");
        }
    }
}

template <typename Store>
void Set(benchmark::State& state) {
    Store& store = OpenedStore<Store>();
    Round places(PlacesAmong<Store>(kValues, kValues));
    Data data = kData;
    for (auto _ : state) {
        ++data[0];  // a value that stays the same might not be written
        if (!store.Set(places.Next(), data)) {
            state.SkipWithError("a value was not written");
        }
    }
}

template <typename Store>
void EnumerateThousand(benchmark::State& state) {
    Store& store = OpenedStore<Store>();
    const auto key = Store::KeyOf(0);
    store.Enumerate(key);
    for (auto _ : state) {
        if (store.Enumerate(key) != kGroupSize) {
            state.SkipWithError("values are missing");
        }
    }
}

template <typename Store>
void OpenAndCloseKey(benchmark::State& state) {
    Store& store = OpenedStore<Store>();
    const auto key = Store::KeyOf(0);
    for (auto _ : state) {
        if (!store.OpenAndClose(key)) {
            state.SkipWithError("the key is missing");
        }
    }
}

// What is measured in children.

// So many readers, and one writer that rests so many milliseconds between its writes. All readers'
// gets go into the time of one, so that it falls as they scale.
template <typename Store>
void ReadersBesideWriter(benchmark::State& state) {
    constexpr int kMilliseconds = 300;
    const std::string directory = Filled<Store>(kValues);
    double gets = 0;
    double sets = 0;
    for (auto _ : state) {
        std::vector<Child> children;
        children.push_back(StartChild("WriteAlong", Store::kName, directory,
                                      {kMilliseconds, static_cast<int>(state.range(1))}));
        while (static_cast<int64_t>(children.size()) <= state.range(0)) {
            children.push_back(StartChild("ReadAlong", Store::kName, directory, {kMilliseconds}));
        }
        for (Child& child : children) {
            child.Read();
        }
        for (Child& child : children) {
            child.Write("go");
        }
        sets = std::stod(children[0].Read());
        gets = 0;
        for (std::size_t i = 1; i < children.size(); ++i) {
            gets += std::stod(children[i].Read()) * kGetsBetweenLooks;
        }
        state.SetIterationTime(kMilliseconds / 1e3 / gets);
    }
    state.counters["gets_a_second"] = gets * 1e3 / kMilliseconds;
    state.counters["sets_a_second"] = sets * 1e3 / kMilliseconds;
}

// How much the resident set grows while so many values are read, once the first was. What is mapped
// counts, and what a store reads at its opening does not.
template <typename Store>
void MemoryOfCache(benchmark::State& state) {
    const int values = static_cast<int>(state.range(0));
    const std::string directory = Filled<Store>(values);
    double bytes = 0;
    for (auto _ : state) {
        bytes = std::stod(StartChild("Grow", Store::kName, directory, {values}).Read());
    }
    state.counters["bytes"] = bytes;
    state.counters["bytes_a_value"] = bytes / values;
}

// A process that ends after one get; `first_get` is its opening and its get alone.
template <typename Store>
void ColdProcess(benchmark::State& state) {
    const std::string directory = Filled<Store>(kValues);
    double gets = 0;
    for (auto _ : state) {
        const auto begin = Clock::now();
        Child child = StartChild("GetOnce", Store::kName, directory, {kValues});
        gets += std::stod(child.Read());
        child.Wait();
        state.SetIterationTime(SecondsSince(begin));
    }
    state.counters["first_get"] = benchmark::Counter(gets, benchmark::Counter::kAvgIterations);
}

// Values in the store, and how many of them are asked for in turn.
template <typename Store>
void Growth(benchmark::State& state) {
    const int values = static_cast<int>(state.range(0));
    const std::string directory = Filled<Store>(values);
    for (auto _ : state) {
        state.SetIterationTime(std::stod(StartChild("GetAmong", Store::kName, directory,
                                                    {values, static_cast<int>(state.range(1))})
                                             .Read()));
    }
}

// All roles and rows, for all stores.

struct Role {
    const char* name;
    void (*run)(const std::string& directory, const Numbers& numbers);
};

template <typename Store>
constexpr Role kRoles[] = {
    {"Fill", Fill<Store>},           {"WriteOnDemand", WriteOnDemand<Store>},
    {"ReadAlong", ReadAlong<Store>}, {"WriteAlong", WriteAlong<Store>},
    {"Grow", Grow<Store>},           {"GetOnce", GetOnce<Store>},
    {"GetAmong", GetAmong<Store>},
};

using Registered = benchmark::internal::Benchmark;

void Plainly(Registered*) {}

void InOtherProcesses(Registered* row) {
    row->UseManualTime()->Iterations(1);
}

struct Row {
    const char* name;
    void (*measure)(benchmark::State& state);
    Offers needs = Offers::kReading;
    void (*configure)(Registered* row) = Plainly;
};

template <typename Store>
constexpr Row kRows[] = {
    {"Get", Get<Store>},
    {"GetAbsent", GetAbsent<Store>},
    {"Set", Set<Store>, Offers::kWriting},
    {"EnumerateThousand", EnumerateThousand<Store>},
    {"OpenAndCloseKey", OpenAndCloseKey<Store>},
    {"GetAfterForeignWrite", GetAfterForeignWrite<Store>, Offers::kSeeingOthersWrite,
     [](Registered* row) { row->UseManualTime()->Iterations(500); }},
    {"ReadersBesideWriter", ReadersBesideWriter<Store>, Offers::kSeeingOthersWrite,
     [](Registered* row) {
         InOtherProcesses(row->ArgNames({"readers", "rest"})->ArgsProduct({{1, 2, 4, 8}, {0, 10}}));
     }},
    {"MemoryOfCache", MemoryOfCache<Store>, Offers::kReading,
     [](Registered* row) { row->Arg(2 * kValues)->Arg(1'000'000)->Iterations(1); }},
    {"ColdProcess", ColdProcess<Store>, Offers::kReading,
     [](Registered* row) { row->UseManualTime()->Iterations(20); }},
    {"Growth", Growth<Store>, Offers::kReading,
     [](Registered* row) {
         InOtherProcesses(row->ArgNames({"values", "asked"}));
         for (const int values : {10, 1'000, 100'000, 1'000'000}) {
             row->Args({values, 10});
         }
         row->Args({1'000'000, 1'000})->Args({1'000'000, 100'000});
     }},
};

struct StoreEntry {
    const char* name;
    Offers offers;
    std::span<const Role> roles;
    std::span<const Row> rows;
};

template <typename Store>
constexpr StoreEntry kEntry = {Store::kName, Store::kOffers, kRoles<Store>, kRows<Store>};

constexpr StoreEntry kStores[] = {
    kEntry<Library>,
    kEntry<Sqlite>,
#ifdef QX_BENCH_LMDB
    kEntry<Lmdb<Reading::kRenewed>>,
    kEntry<Lmdb<Reading::kStanding>>,
#endif
#ifdef QX_BENCH_GLIB
    kEntry<KeyFile>,
#endif
};

// A row's stores stand below each other.
void RegisterRows() {
    for (std::size_t number = 0; number < kStores[0].rows.size(); ++number) {
        for (const StoreEntry& store : kStores) {
            const Row& row = store.rows[number];
            if (row.needs <= store.offers) {
                const std::string name = std::string(row.name) + "/" + store.name;
                row.configure(benchmark::RegisterBenchmark(name.c_str(), row.measure));
            }
        }
    }
}

// Role, store, folder, numbers.
int RunChild(const Arguments& arguments) {
    Numbers numbers;
    for (std::size_t i = 3; i < arguments.size(); ++i) {
        numbers.push_back(std::stoi(arguments[i]));
    }
    for (const StoreEntry& store : kStores) {
        for (const Role& role : store.roles) {
            if (arguments[0] == role.name && arguments[1] == store.name) {
                role.run(arguments[2], numbers);
                return 0;
            }
        }
    }
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc > 4 && std::string_view(argv[1]) == kChild) {
        return RunChild({argv + 2, argv + argc});
    }
    const Folder folder;
    s_folder = &folder;
    RegisterRows();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

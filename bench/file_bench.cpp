// Files beside the system calls by hand.
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <qxcore/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

constexpr uint32_t kBlock = 4096;
constexpr int kBlocks = 64;

// A directory of the run's own with a file of some blocks, one of 64 MiB, and 10,000 empty ones.
class Place {
  public:
    Place() {
        std::filesystem::create_directories(m_path / "many");
        std::ofstream(m_path / "large") << "";
        std::filesystem::resize_file(m_path / "large", 64 << 20);
        for (int i = 0; i < 10'000; ++i) {
            std::ofstream(m_path / "many" / std::to_string(i)) << "";
        }
    }
    ~Place() { std::filesystem::remove_all(m_path); }

    std::string Bytes(const char* name) const { return (m_path / name).string(); }
    std::u16string Units(const char* name) const { return (m_path / name).u16string(); }

  private:
    const std::filesystem::path m_path =
        std::filesystem::temp_directory_path() / ("file_bench-" + std::to_string(getpid()));
};

const Place& ThePlace() {
    static const Place place;
    return place;
}

void BlocksOurs(benchmark::State& state) {
    const std::u16string path = ThePlace().Units("blocks");
    std::vector<char> block(kBlock);
    uint32_t done = 0;
    uint32_t position = 0;
    for (auto _ : state) {
        QXHandle file;
        QXFileOpen(path.c_str(), QX_FILE_READ | QX_FILE_WRITE | QX_FILE_CREATE, 0666, &file);
        for (int i = 0; i < kBlocks; ++i) {
            QXFileWrite(file, block.data(), kBlock, &done);
        }
        QXFileSeek(file, 0, 0, &position);
        for (int i = 0; i < kBlocks; ++i) {
            QXFileRead(file, block.data(), kBlock, &done);
        }
        QXFileClose(file);
    }
}
BENCHMARK(BlocksOurs)->Name("file: open, 64 blocks written and read, close/ours");

void BlocksByHand(benchmark::State& state) {
    const std::string path = ThePlace().Bytes("blocks");
    std::vector<char> block(kBlock);
    for (auto _ : state) {
        const int file = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        for (int i = 0; i < kBlocks; ++i) {
            benchmark::DoNotOptimize(write(file, block.data(), kBlock));
        }
        lseek(file, 0, SEEK_SET);
        for (int i = 0; i < kBlocks; ++i) {
            benchmark::DoNotOptimize(read(file, block.data(), kBlock));
        }
        close(file);
    }
}
BENCHMARK(BlocksByHand)->Name("file: open, 64 blocks written and read, close/by hand");

void CopyOurs(benchmark::State& state) {
    const std::u16string from = ThePlace().Units("large");
    const std::u16string to = ThePlace().Units("copy");
    for (auto _ : state) {
        QXFileCopy(from.c_str(), to.c_str(), QX_FILE_CREATE, 0666, nullptr);
    }
}
BENCHMARK(CopyOurs)->Name("file: copy of 64 MiB/ours")->Unit(benchmark::kMillisecond);

void CopyByHand(benchmark::State& state) {
    std::vector<char> buffer(16384);
    for (auto _ : state) {
        const int from = open(ThePlace().Bytes("large").c_str(), O_RDONLY);
        const int to = open(ThePlace().Bytes("copy").c_str(), O_WRONLY | O_CREAT, 0666);
        for (ssize_t got; (got = read(from, buffer.data(), buffer.size())) > 0;) {
            benchmark::DoNotOptimize(write(to, buffer.data(), static_cast<size_t>(got)));
        }
        close(from);
        close(to);
    }
}
BENCHMARK(CopyByHand)->Name("file: copy of 64 MiB/by hand")->Unit(benchmark::kMillisecond);

void ListOurs(benchmark::State& state) {
    const std::u16string path = ThePlace().Units("many");
    for (auto _ : state) {
        QXHandle directory;
        QXDirEntry entry;
        QXDirOpen(path.c_str(), &directory);
        while (QXDirRead(directory, &entry, 0) == QX_S_OK) {
            benchmark::DoNotOptimize(entry);
        }
        QXDirClose(directory);
    }
}
BENCHMARK(ListOurs)->Name("file: listing of 10,000 entries/ours")->Unit(benchmark::kMillisecond);

void ListByHand(benchmark::State& state) {
    for (auto _ : state) {
        DIR* const directory = opendir(ThePlace().Bytes("many").c_str());
        while (const dirent* const entry = readdir(directory)) {
            struct stat status;
            fstatat(dirfd(directory), entry->d_name, &status, AT_SYMLINK_NOFOLLOW);
            benchmark::DoNotOptimize(status);
        }
        closedir(directory);
    }
}
BENCHMARK(ListByHand)
    ->Name("file: listing of 10,000 entries/readdir and stat")
    ->Unit(benchmark::kMillisecond);

}  // namespace

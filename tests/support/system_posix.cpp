#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "support/known_differences.h"
#include "support/system.h"

extern "C" char** environ;

namespace {

[[noreturn]] void Die(const char* what, const char* of) {
    std::fprintf(stderr, "%s: %s\n", what, of);
    std::abort();
}

struct Pipe {
    Pipe() {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) {
            Die("no pipe", "");
        }
        read = ends[0];
        write = ends[1];
    }
    int read;
    int write;
};

void CloseOnce(int* descriptor) {
    if (*descriptor >= 0) {
        ::close(*descriptor);
        *descriptor = -1;
    }
}

}  // namespace

bool RunsUnderWine() {
    return false;
}

void PrepareProgram() {}

void SetEnvironment(const std::string& name, const std::string& value) {
    ::setenv(name.c_str(), value.c_str(), 1);
}

void UnsetEnvironment(const std::string& name) {
    ::unsetenv(name.c_str());
}

std::filesystem::path ProgramPath() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

std::filesystem::path ModulePath(const std::string& fileName) {
    return ProgramPath().parent_path() / fileName;
}

LoadedModule::LoadedModule(const std::filesystem::path& file)
    : m_module(::dlopen(file.c_str(), RTLD_NOW)) {
    if (m_module == nullptr) {
        Die("not loaded", ::dlerror());
    }
}

void* LoadedModule::Symbol(const char* name) const {
    return ::dlsym(m_module, name);
}

bool LoadedModule::Close() {
    return ::dlclose(m_module) == 0;
}

bool LoadedModule::IsLoaded(const std::filesystem::path& file) {
    void* const module = ::dlopen(file.c_str(), RTLD_NOW | RTLD_NOLOAD);
    return module != nullptr && ::dlclose(module) == 0;
}

void* FindInLibrary(const char* name) {
    return ::dlsym(RTLD_DEFAULT, name);
}

unsigned ThreadNumber() {
    return static_cast<unsigned>(::gettid());
}

bool ThreadSleeps(unsigned number) {
    std::string line;
    std::getline(std::ifstream("/proc/self/task/" + std::to_string(number) + "/stat"), line);
    return line.find(") S ") != std::string::npos;
}

Footprint MeasureFootprint() {
    Footprint now = {};
    for ([[maybe_unused]] const auto& entry :
         std::filesystem::directory_iterator("/proc/self/fd")) {
        ++now.handles;
    }
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        ++now.mappings;
    }
    now.heap = ::mallinfo2().uordblks;
    return now;
}

OwnRegistry::OwnRegistry() {
    SetEnvironment("W64QXCORE6_REGISTRY", m_directory.Path());
}

OwnRegistry::~OwnRegistry() = default;

struct ChildProcess::System {
    pid_t id = -1;
    int input = -1;
    int output = -1;
};

ChildProcess::ChildProcess(std::unique_ptr<System> system) : m_system(std::move(system)) {}
ChildProcess::ChildProcess(ChildProcess&& other) noexcept = default;

ChildProcess ChildProcess::OfProgram(const std::filesystem::path& file,
                                     const Arguments& arguments) {
    std::vector<char*> words = {const_cast<char*>(file.c_str())};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    const Pipe input;
    const Pipe output;
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input.read, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output.write, STDOUT_FILENO);
    auto system = std::make_unique<System>();
    if (::posix_spawn(&system->id, file.c_str(), &actions, nullptr, words.data(), environ) != 0) {
        Die("not started", file.c_str());
    }
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(input.read);
    ::close(output.write);
    system->input = input.write;
    system->output = output.read;
    return ChildProcess(std::move(system));
}

ChildProcess::~ChildProcess() {
    if (m_system != nullptr) {
        Kill();
    }
}

void ChildProcess::WriteLine(const std::string& line) {
    const std::string whole = line + "\n";
    if (::write(m_system->input, whole.data(), whole.size()) < 0) {
        std::perror("a line to a child");
    }
}

std::string ChildProcess::ReadLine() {
    std::string line;
    for (char unit; ::read(m_system->output, &unit, 1) == 1 && unit != '\n';) {
        line += unit;
    }
    return line;
}

int ChildProcess::Wait() {
    CloseOnce(&m_system->input);
    char block[4096];
    for (ssize_t got; (got = ::read(m_system->output, block, sizeof block)) > 0;) {
        m_output.append(block, static_cast<size_t>(got));
    }
    CloseOnce(&m_system->output);
    int status = 0;
    const bool ended = ::waitpid(m_system->id, &status, 0) == m_system->id && WIFEXITED(status);
    m_system.reset();
    return ended ? WEXITSTATUS(status) : -1;
}

void ChildProcess::Kill() {
    ::kill(m_system->id, SIGKILL);
    Wait();
}

FencedPage::FencedPage() : m_size(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))) {
    char* const fence = static_cast<char*>(
        ::mmap(nullptr, 3 * m_size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    m_begin = fence + m_size;
    ::mprotect(m_begin, m_size, PROT_READ | PROT_WRITE);
}

FencedPage::~FencedPage() {
    ::munmap(m_begin - m_size, 3 * m_size);
}

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

LoadedModule::LoadedModule(const std::filesystem::path& file)
    : m_module(::dlopen(file.c_str(), RTLD_NOW)) {
    if (m_module == nullptr) {
        std::fprintf(stderr, "not loaded: %s\n", ::dlerror());
        std::abort();
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

int ChildProcess::MakePipe(int* ends) {
    return ::pipe2(ends, O_CLOEXEC);
}

bool ChildProcess::Start(const std::filesystem::path& file, const Arguments& arguments, int input,
                         int output, std::intptr_t* id) {
    std::vector<char*> words = {const_cast<char*>(file.c_str())};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    pid_t child = -1;
    const int error = ::posix_spawn(&child, file.c_str(), &actions, nullptr, words.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    *id = child;
    return error == 0;
}

int ChildProcess::ExitCode(std::intptr_t id) {
    int status = 0;
    const auto child = static_cast<pid_t>(id);
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ChildProcess::Terminate(std::intptr_t id) {
    ::kill(static_cast<pid_t>(id), SIGKILL);
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

// The few things that a test needs of the system and that differ between platforms: one source for
// each. Texts are UTF-8.
#ifndef TESTS_SUPPORT_SYSTEM_H
#define TESTS_SUPPORT_SYSTEM_H

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "support/temporary_directory.h"

// What a test program does before anything else: standard input and output carry bytes as they are,
// and a child takes over its parent's registry.
void PrepareProgram();

// The environment as this process's libraries and its children see it.
void SetEnvironment(const std::string& name, const std::string& value);
void UnsetEnvironment(const std::string& name);

// The file of this test program.
std::filesystem::path ProgramPath();

// A module of the test tree by the name of its file: all stand in one folder with the programs.
inline std::filesystem::path ModulePath(const std::string& fileName) {
    return ProgramPath().parent_path() / fileName;
}

// A module that the test itself loads.
class LoadedModule {
  public:
    // Ends the process if the module cannot be loaded.
    explicit LoadedModule(const std::filesystem::path& file);
    // Null if the module has no such symbol.
    void* Symbol(const char* name) const;
    // False if it could not be closed.
    bool Close();

    static bool IsLoaded(const std::filesystem::path& file);

  private:
    void* m_module;
};

// A function of the library under test, however the process came by it; null if it is not there.
void* FindInLibrary(const char* name);

// The system's number of the calling thread.
unsigned ThreadNumber();
// Whether a thread of this process sleeps in the system. Where the system does not tell, the thread
// is given some time, and the answer is yes.
bool ThreadSleeps(unsigned number);

// What this process holds of the system.
struct Footprint {
    std::size_t handles;
    std::size_t mappings;
    std::size_t heap;  // bytes
};
Footprint MeasureFootprint();

// A registry of a test's own, which the children that it starts share. The library looks for its
// registry once in a process, so a test that uses it has one of these.
class OwnRegistry {
  public:
    OwnRegistry();
    ~OwnRegistry();
    OwnRegistry(const OwnRegistry&) = delete;

    // For files of the test; Linux has the registry's own there too.
    const std::filesystem::path& Folder() const { return m_directory.Path(); }

  private:
    TemporaryDirectory m_directory;
};

// A started program. Its standard input and output are pipes, for messages of a line each; what it
// writes to standard error shows in the test's.
class ChildProcess {
  public:
    using Arguments = std::vector<std::string>;

    // Runs a role of this test program (support/child_role.h).
    explicit ChildProcess(const std::string& role, const Arguments& arguments = {});
    // Ends the process if the program cannot be started.
    static ChildProcess OfProgram(const std::filesystem::path& file, const Arguments& arguments);

    ~ChildProcess();  // kills one that nobody has waited for
    ChildProcess(ChildProcess&& other) noexcept = default;

    void WriteLine(const std::string& line);
    // The next line, without its end; empty at the end of the output.
    std::string ReadLine();
    // Closes the input, takes what is left of the output and waits for the end. Returns the exit
    // code, or -1 for a child that a signal or a fault has ended.
    int Wait();
    // Ends the child as it stands, and waits for that.
    void Kill();

  private:
    struct Process {
        std::intptr_t id;
        int input;  // descriptors of the C runtime
        int output;
    };
    explicit ChildProcess(Process process) : m_process(std::make_unique<Process>(process)) {}

    // For each platform. The ends of a pipe are for reading and writing, and nobody inherits them.
    static int MakePipe(int* ends);
    static bool Start(const std::filesystem::path& file, const Arguments& arguments, int input,
                      int output, std::intptr_t* id);
    static int ExitCode(std::intptr_t id);  // when it has ended
    static void Terminate(std::intptr_t id);

    std::unique_ptr<Process> m_process;
};

// Memory that ends where the next byte may not be touched, and begins where the one before may not.
class FencedPage {
  public:
    FencedPage();
    ~FencedPage();
    FencedPage(const FencedPage&) = delete;

    char* Begin() const { return m_begin; }
    std::size_t Size() const { return m_size; }

  private:
    std::size_t m_size;
    char* m_begin;
};

#endif

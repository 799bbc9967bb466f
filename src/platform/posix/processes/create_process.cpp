#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "../cancellation.h"
#include "../files/file_error.h"
#include "../files/file_object.h"
#include "../files/file_path.h"
#include "command_line.h"
#include "platform/processes.h"
#include "process_object.h"
#include "program_start.h"

namespace platform {
namespace {

// Thrown with the last error.
struct StartFailure {
    u32 m_error;
};

u32 StartErrorFromErrno(int error) noexcept {
    switch (error) {
        case E2BIG:
            return kErrorFilenameExceedsRange;
        case EAGAIN:
            return kErrorNoSystemResources;
        case ENOEXEC:
        case ELIBBAD:
            return kErrorBadExeFormat;
        default:
            return FileErrorFromErrno(error);
    }
}

// Texts as a program gets them.
class TextVector {
  public:
    void Add(std::u16string_view text) {
        if (!AppendBytes(text, m_texts.emplace_back())) {
            throw StartFailure{kErrorInvalidName};
        }
    }

    char* const* Pointers() {
        for (std::string& text : m_texts) {
            m_pointers.push_back(text.data());
        }
        m_pointers.push_back(nullptr);
        return m_pointers.data();
    }

  private:
    std::vector<std::string> m_texts;
    std::vector<char*> m_pointers;
};

TextVector ArgumentsOf(std::u16string_view application, std::u16string_view commandLine) {
    TextVector arguments;
    arguments.Add(application);
    for (const std::u16string& argument :
         SplitCommandLine(commandLine.substr(application.size()))) {
        arguments.Add(argument);
    }
    return arguments;
}

TextVector EnvironmentOf(const char16_t* block) {
    TextVector environment;
    while (*block != 0) {
        const std::u16string_view text(block);
        environment.Add(text);
        block += text.size() + 1;
    }
    return environment;
}

std::string CurrentDirectory() {
    const std::unique_ptr<char, decltype(&std::free)> path(::getcwd(nullptr, 0), &std::free);
    if (path == nullptr) {
        throw StartFailure{FileErrorFromErrno(errno)};
    }
    return path.get();
}

bool IsThere(const std::string& path) noexcept {
    struct stat status;
    return ::stat(path.c_str(), &status) == 0 || errno != ENOENT;
}

// Programs have no ".exe" here.
void RemoveSuffixOfOtherPlatform(std::string& path) {
    constexpr std::string_view kSuffix = ".exe";
    if (path.ends_with(kSuffix) && !IsThere(path)) {
        path.resize(path.size() - kSuffix.size());
    }
}

// A path is this process's own, and not looked for in the directory that the child works in.
std::string ProgramPath(const char16_t* application, bool isAbsolute) {
    const FilePath path(application);
    if (!path.IsValid()) {
        throw StartFailure{GetLastError()};
    }
    std::string program = path.Text();
    RemoveSuffixOfOtherPlatform(program);
    if (isAbsolute && !program.empty() && program.front() != '/') {
        program.insert(0, CurrentDirectory() + '/');
    }
    return program;
}

u32 DirectoryErrorFromErrno(int error) noexcept {
    return error == ENOENT || error == ENOTDIR || error == ENAMETOOLONG ? u32{kErrorDirectory}
                                                                        : FileErrorFromErrno(error);
}

OwnedDescriptor OpenDirectory(const char16_t* directory) {
    const FilePath path(directory);
    if (!path.IsValid()) {
        throw StartFailure{kErrorDirectory};
    }
    OwnedDescriptor opened = OpenDescriptor(path.Text(), O_PATH | O_DIRECTORY);
    if (!opened) {
        throw StartFailure{DirectoryErrorFromErrno(errno)};
    }
    return opened;
}

// The child's standard handles, open until it has its own.
class StandardHandles {
  public:
    explicit StandardHandles(const STARTUPINFOW& startup) {
        if ((startup.dwFlags & kStartfUseStdHandles) != 0) {
            Take(0, startup.hStdInput);
            Take(1, startup.hStdOutput);
            Take(2, startup.hStdError);
        }
    }

    void Store(int* standard) const noexcept {
        std::memcpy(standard, m_descriptors, sizeof m_descriptors);
    }

  private:
    void Take(int index, HANDLE handle) {
        if (handle == nullptr) {
            m_descriptors[index] = NullDevice();
            return;
        }
        const FileReference& file = m_files[index].emplace(handle);
        if (!file) {
            throw StartFailure{kErrorInvalidHandle};
        }
        m_descriptors[index] = file->Descriptor();
    }

    int NullDevice() {
        if (!m_null) {
            m_null = OpenDescriptor("/dev/null", O_RDWR);
        }
        if (!m_null) {
            throw StartFailure{FileErrorFromErrno(errno)};
        }
        return m_null.Get();
    }

    std::optional<FileReference> m_files[3];
    OwnedDescriptor m_null;
    int m_descriptors[3] = {-1, -1, -1};
};

// The object is made first, so that a child that runs has one.
HANDLE Start(const ProgramStart& start) {
    auto process = std::make_unique<StartedProcess>();
    auto object = std::make_unique<ProcessObject>(std::move(process));
    OwnedDescriptor descriptor;
    if (const int error = StartProgram(start, &descriptor)) {
        throw StartFailure{StartErrorFromErrno(error)};
    }
    object->Process().SetDescriptor(std::move(descriptor));
    return NewCheckedHandle(object.release());
}

HANDLE Create(const char16_t* application, const char16_t* commandLine, const char16_t* block,
              const char16_t* directory, const STARTUPINFOW& startup) {
    ProgramStart start = {};
    const std::string path = ProgramPath(application, directory != nullptr);
    TextVector arguments = ArgumentsOf(application, commandLine);
    TextVector environment = block != nullptr ? EnvironmentOf(block) : TextVector();
    const OwnedDescriptor opened =
        directory != nullptr ? OpenDirectory(directory) : OwnedDescriptor();
    const StandardHandles handles(startup);
    start.m_path = path.c_str();
    start.m_arguments = arguments.Pointers();
    start.m_environment = block != nullptr ? environment.Pointers() : environ;
    start.m_directory = opened.Get();
    handles.Store(start.m_standard);
    return Start(start);
}

}  // namespace

bool CreateProcessW(const char16_t* application, char16_t* commandLine, const SECURITY_ATTRIBUTES*,
                    const SECURITY_ATTRIBUTES*, bool, u32, void* environment,
                    const char16_t* directory, STARTUPINFOW* startup,
                    PROCESS_INFORMATION* information) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    StartedProcess::CollectGivenUp();
    try {
        information->hProcess =
            Create(application, commandLine, static_cast<const char16_t*>(environment), directory,
                   *startup);
        information->hThread = kCurrentThread;
        return true;
    } catch (const StartFailure& failure) {
        return FailWith(failure.m_error);
    } catch (const std::bad_alloc&) {
        return FailWith(kErrorOutOfMemory);
    }
}

}  // namespace platform

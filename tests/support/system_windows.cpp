#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <iterator>

#include "support/known_differences.h"
#include "support/system.h"

namespace {

constexpr UINT kKilled = 0xDEAD;

[[noreturn]] void Die(const char* what, const std::filesystem::path& of) {
    std::fprintf(stderr, "%s (%lu): %s\n", what, ::GetLastError(), of.string().c_str());
    std::abort();
}

// Text is UTF-8 here and UTF-16 over there.
std::wstring Wide(const std::string& text) {
    return std::filesystem::path(std::u8string(text.begin(), text.end())).wstring();
}

// An argument as the runtime of the child takes it apart again.
std::wstring Quoted(const std::wstring& argument) {
    std::wstring quoted = L"\"";
    size_t backslashes = 0;
    for (const wchar_t unit : argument) {
        if (unit == L'"') {
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = unit == L'\\' ? backslashes + 1 : 0;
        quoted += unit;
    }
    return quoted.append(backslashes, L'\\') + L"\"";
}

struct Pipe {
    Pipe() {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        if (!::CreatePipe(&read, &write, &inherited, 0)) {
            Die("no pipe", "");
        }
    }
    HANDLE read;
    HANDLE write;
};

void CloseOnce(HANDLE* handle) {
    if (*handle != nullptr) {
        ::CloseHandle(*handle);
        *handle = nullptr;
    }
}

// Roots of the registry, each put in the place of a key below the test's own.
struct Root {
    HKEY key;
    const wchar_t* name;
};
const Root kRoots[] = {{HKEY_CURRENT_USER, L"\\user"},
                       {HKEY_LOCAL_MACHINE, L"\\machine"},
                       {HKEY_CLASSES_ROOT, L"\\classes"}};

constexpr wchar_t kRegistryVariable[] = L"QXCORE_TEST_REGISTRY";

void RedirectRoots(const std::wstring& registry) {
    HKEY keys[std::size(kRoots)];
    for (size_t index = 0; index < std::size(kRoots); ++index) {
        if (::RegCreateKeyW(HKEY_CURRENT_USER, (registry + kRoots[index].name).c_str(),
                            &keys[index]) != ERROR_SUCCESS) {
            Die("no registry", registry);
        }
    }
    for (size_t index = 0; index < std::size(kRoots); ++index) {
        ::RegOverridePredefKey(kRoots[index].key, keys[index]);
        ::RegCloseKey(keys[index]);
    }
}

}  // namespace

bool RunsUnderWine() {
    return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

void PrepareProgram() {
    ::_setmode(::_fileno(stdin), _O_BINARY);
    ::_setmode(::_fileno(stdout), _O_BINARY);
    if (const wchar_t* const registry = ::_wgetenv(kRegistryVariable)) {
        RedirectRoots(registry);
    }
}

void SetEnvironment(const std::string& name, const std::string& value) {
    ::_wputenv((Wide(name) + L"=" + Wide(value)).c_str());
}

void UnsetEnvironment(const std::string& name) {
    SetEnvironment(name, "");
}

std::filesystem::path ProgramPath() {
    wchar_t path[MAX_PATH];
    return std::wstring(path, ::GetModuleFileNameW(nullptr, path, MAX_PATH));
}

std::filesystem::path ModulePath(const std::string& fileName) {
    return ProgramPath().parent_path() / fileName;
}

LoadedModule::LoadedModule(const std::filesystem::path& file)
    : m_module(::LoadLibraryW(file.c_str())) {
    if (m_module == nullptr) {
        Die("not loaded", file);
    }
}

void* LoadedModule::Symbol(const char* name) const {
    return reinterpret_cast<void*>(::GetProcAddress(static_cast<HMODULE>(m_module), name));
}

bool LoadedModule::Close() {
    return ::FreeLibrary(static_cast<HMODULE>(m_module)) != 0;
}

bool LoadedModule::IsLoaded(const std::filesystem::path& file) {
    return ::GetModuleHandleW(file.c_str()) != nullptr;
}

void* FindInLibrary(const char* name) {
    // A program may hold the library's objects itself.
    for (const wchar_t* const module : {static_cast<const wchar_t*>(nullptr), L"w64qxcore6.dll"}) {
        const HMODULE holder = ::GetModuleHandleW(module);
        if (const FARPROC found = holder != nullptr ? ::GetProcAddress(holder, name) : nullptr) {
            return reinterpret_cast<void*>(found);
        }
    }
    return nullptr;
}

unsigned ThreadNumber() {
    return ::GetCurrentThreadId();
}

bool ThreadSleeps(unsigned) {
    ::Sleep(50);
    return true;
}

Footprint MeasureFootprint() {
    Footprint now = {};
    DWORD handles = 0;
    ::GetProcessHandleCount(::GetCurrentProcess(), &handles);
    now.handles = handles;
    MEMORY_BASIC_INFORMATION region;
    for (const char* place = nullptr; ::VirtualQuery(place, &region, sizeof region) != 0;
         place += region.RegionSize) {
        now.mappings += region.State != MEM_FREE;
    }
    PROCESS_HEAP_ENTRY entry = {};
    while (::HeapWalk(::GetProcessHeap(), &entry)) {
        now.heap += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? entry.cbData : 0;
    }
    return now;
}

OwnRegistry::OwnRegistry() {
    const std::wstring registry = L"Software\\" + m_directory.Path().filename().wstring();
    ::_wputenv((std::wstring(kRegistryVariable) + L"=" + registry).c_str());
    RedirectRoots(registry);
}

OwnRegistry::~OwnRegistry() {
    for (const Root& root : kRoots) {
        ::RegOverridePredefKey(root.key, nullptr);
    }
    ::RegDeleteTreeW(HKEY_CURRENT_USER, ::_wgetenv(kRegistryVariable));
    ::_wputenv((std::wstring(kRegistryVariable) + L"=").c_str());
}

struct ChildProcess::System {
    HANDLE process = nullptr;
    HANDLE input = nullptr;
    HANDLE output = nullptr;
};

ChildProcess::ChildProcess(std::unique_ptr<System> system) : m_system(std::move(system)) {}
ChildProcess::ChildProcess(ChildProcess&& other) noexcept = default;

ChildProcess ChildProcess::OfProgram(const std::filesystem::path& file,
                                     const Arguments& arguments) {
    std::wstring line = Quoted(file.wstring());
    for (const std::string& argument : arguments) {
        line += L' ' + Quoted(Wide(argument));
    }
    const Pipe input;
    const Pipe output;
    ::SetHandleInformation(input.write, HANDLE_FLAG_INHERIT, 0);
    ::SetHandleInformation(output.read, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input.read;
    start.hStdOutput = output.write;
    start.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
    PROCESS_INFORMATION started = {};
    if (!::CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                          &start, &started)) {
        Die("not started", file);
    }
    ::CloseHandle(started.hThread);
    ::CloseHandle(input.read);
    ::CloseHandle(output.write);
    auto system = std::make_unique<System>();
    system->process = started.hProcess;
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
    DWORD written = 0;
    if (!::WriteFile(m_system->input, whole.data(), static_cast<DWORD>(whole.size()), &written,
                     nullptr)) {
        std::fprintf(stderr, "a line to a child: %lu\n", ::GetLastError());
    }
}

std::string ChildProcess::ReadLine() {
    std::string line;
    DWORD got = 0;
    for (char unit;
         ::ReadFile(m_system->output, &unit, 1, &got, nullptr) && got == 1 && unit != '\n';) {
        line += unit;
    }
    return line;
}

// A fault ends a process with the number of the exception, which is negative.
int ChildProcess::Wait() {
    CloseOnce(&m_system->input);
    char block[4096];
    for (DWORD got = 0;
         ::ReadFile(m_system->output, block, sizeof block, &got, nullptr) && got > 0;) {
        m_output.append(block, got);
    }
    CloseOnce(&m_system->output);
    DWORD code = kKilled;
    ::WaitForSingleObject(m_system->process, INFINITE);
    ::GetExitCodeProcess(m_system->process, &code);
    ::CloseHandle(m_system->process);
    m_system.reset();
    return code == kKilled || static_cast<int>(code) < 0 ? -1 : static_cast<int>(code);
}

void ChildProcess::Kill() {
    ::TerminateProcess(m_system->process, kKilled);
    Wait();
}

FencedPage::FencedPage() {
    SYSTEM_INFO info;
    ::GetSystemInfo(&info);
    m_size = info.dwPageSize;
    char* const fence =
        static_cast<char*>(::VirtualAlloc(nullptr, 3 * m_size, MEM_RESERVE, PAGE_NOACCESS));
    m_begin =
        static_cast<char*>(::VirtualAlloc(fence + m_size, m_size, MEM_COMMIT, PAGE_READWRITE));
}

FencedPage::~FencedPage() {
    ::VirtualFree(m_begin - m_size, 0, MEM_RELEASE);
}

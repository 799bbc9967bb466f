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

// No test's argument has a quotation mark, or a backslash at its end.
std::wstring Quoted(const std::wstring& argument) {
    return L'"' + argument + L'"';
}

// Roots of the registry, each put in the place of a key below the test's own. The last is the one
// that these keys are made in.
struct Root {
    HKEY key;
    const char* name;
};
const Root kRoots[] = {{HKEY_CLASSES_ROOT, "\\classes"},
                       {HKEY_LOCAL_MACHINE, "\\machine"},
                       {HKEY_CURRENT_USER, "\\user"}};

constexpr char kRegistryVariable[] = "QXCORE_TEST_REGISTRY";

void RedirectRoots(const std::string& registry) {
    for (const Root& root : kRoots) {
        HKEY key;
        if (::RegCreateKeyA(HKEY_CURRENT_USER, (registry + root.name).c_str(), &key) !=
            ERROR_SUCCESS) {
            Die("no registry", registry);
        }
        ::RegOverridePredefKey(root.key, key);
        ::RegCloseKey(key);
    }
}

}  // namespace

bool RunsUnderWine() {
    return ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "wine_get_version") != nullptr;
}

void PrepareProgram() {
    ::_setmode(::_fileno(stdin), _O_BINARY);
    ::_setmode(::_fileno(stdout), _O_BINARY);
    if (const char* const registry = std::getenv(kRegistryVariable)) {
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
    const std::string registry = "Software\\" + m_directory.Path().filename().string();
    SetEnvironment(kRegistryVariable, registry);
    RedirectRoots(registry);
}

OwnRegistry::~OwnRegistry() {
    for (const Root& root : kRoots) {
        ::RegOverridePredefKey(root.key, nullptr);
    }
    ::RegDeleteTreeA(HKEY_CURRENT_USER, std::getenv(kRegistryVariable));
    UnsetEnvironment(kRegistryVariable);
}

int ChildProcess::MakePipe(int* ends) {
    return ::_pipe(ends, 4096, _O_BINARY | _O_NOINHERIT);
}

bool ChildProcess::Start(const std::filesystem::path& file, const Arguments& arguments, int input,
                         int output, std::intptr_t* id) {
    std::wstring line = Quoted(file.wstring());
    for (const std::string& argument : arguments) {
        line += L' ' + Quoted(Wide(argument));
    }
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = reinterpret_cast<HANDLE>(::_get_osfhandle(input));
    start.hStdOutput = reinterpret_cast<HANDLE>(::_get_osfhandle(output));
    start.hStdError = ::GetStdHandle(STD_ERROR_HANDLE);
    for (const HANDLE end : {start.hStdInput, start.hStdOutput}) {
        ::SetHandleInformation(end, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    }
    PROCESS_INFORMATION started = {};
    const bool isStarted = ::CreateProcessW(file.c_str(), line.data(), nullptr, nullptr, TRUE, 0,
                                            nullptr, nullptr, &start, &started);
    ::CloseHandle(started.hThread);
    *id = reinterpret_cast<std::intptr_t>(started.hProcess);
    return isStarted;
}

// A fault ends a process with the number of the exception, which is negative.
int ChildProcess::ExitCode(std::intptr_t id) {
    DWORD code = kKilled;
    const auto process = reinterpret_cast<HANDLE>(id);
    ::WaitForSingleObject(process, INFINITE);
    ::GetExitCodeProcess(process, &code);
    ::CloseHandle(process);
    return code == kKilled || static_cast<int>(code) < 0 ? -1 : static_cast<int>(code);
}

void ChildProcess::Terminate(std::intptr_t id) {
    ::TerminateProcess(reinterpret_cast<HANDLE>(id), kKilled);
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

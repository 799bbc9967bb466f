// Calls the library's entry function when the shared object is loaded and unloaded. This pair is
// the only constructor and the only destructor of the library.
#include <dirent.h>
#include <dlfcn.h>
#include <sys/auxv.h>
#include <sys/single_threaded.h>
#include <unicode/putil.h>

#include "cancellation.h"
#include "checked_handles.h"
#include "fork.h"
#include "platform/lifetime.h"
#include "registry_lifetime.h"

extern "C" [[gnu::visibility("hidden")]] char __dso_handle;
extern "C" int __cxa_atexit(void (*handler)(void*), void* argument, void* module);

namespace platform {
namespace {

constinit bool s_processEnds = false;

// For a library that was opened by dlopen, the exit handler and the destructor tell its two ends
// apart. At the end of the process the C library runs the exit handlers before it detaches any
// shared object that came later than the program; dlclose runs the destructor first and this
// library's exit handlers behind it.
void NoteProcessEnd(void*) {
    s_processEnds = true;
}

// A library that came with the program is detached at the end of the process and never before. What
// the program finds may be another copy of this library.
bool CameWithTheProgram() noexcept {
    void* const program = ::dlopen(nullptr, RTLD_LAZY);
    const void* const found = ::dlsym(program, "QXModuleSetInitialized");
    ::dlclose(program);
    Dl_info info;
    Dl_info own;
    return found != nullptr && ::dladdr(found, &info) != 0 && ::dladdr(&__dso_handle, &own) != 0 &&
           info.dli_fbase == own.dli_fbase;
}

// ICU takes the place of its data from the environment, which in a program with more rights than
// its caller is the caller's.
void GuardAgainstCaller() noexcept {
    if (::getauxval(AT_SECURE) != 0) {
        ::u_setDataDirectory("");
    }
}

// The tasks of the process, counted up to two.
bool OneThreadIsLeft() noexcept {
    DIR* tasks = ::opendir("/proc/self/task");
    if (tasks == nullptr) {
        return false;
    }
    int threads = 0;
    while (const dirent* entry = ::readdir(tasks)) {
        threads += entry->d_name[0] != '.';
    }
    ::closedir(tasks);
    return threads == 1;
}

[[gnu::constructor]] void OnLoad() {
    const CancellationOff noCancellation;
    GuardAgainstCaller();
    if (CameWithTheProgram()) {
        s_processEnds = true;
    } else {
        __cxa_atexit(NoteProcessEnd, nullptr, &__dso_handle);
    }
    InstallForkHandlers();
    DllMain(&__dso_handle, kProcessAttach, nullptr);
}

// The threads are counted once: what is left standing for them is left standing everywhere.
[[gnu::destructor]] void OnUnload() {
    const CancellationOff noCancellation;
    const bool othersMayRun = s_processEnds && !__libc_single_threaded && !OneThreadIsLeft();
    if (!s_processEnds) {
        EndForkHandling();
    }
    DllMain(&__dso_handle, kProcessDetach, othersMayRun ? &__dso_handle : nullptr);
    if (!othersMayRun) {
        CloseRegistryStores();
        FreeCheckedHandles();
    }
}

}  // namespace
}  // namespace platform

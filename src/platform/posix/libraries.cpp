#include "platform/libraries.h"

#include <dlfcn.h>
#include <link.h>

#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "cancellation.h"
#include "narrow_path.h"
#include "platform/errors.h"

namespace platform {
namespace {

// The loader tells its reason in words only. They are translated, but as strerror's are.
u32 NativeErrorFromLoaderMessage(const char* message) noexcept {
    if (message == nullptr) {
        return kErrorModuleNotFound;
    }
    const std::string_view text = message;
    const auto endsWithErrno = [text](int error) {
        const char* const words = ::strerror(error);
        return text.ends_with(words);
    };
    if (endsWithErrno(ENOENT) || endsWithErrno(ENOTDIR)) {
        return kErrorModuleNotFound;
    }
    if (endsWithErrno(EACCES) || endsWithErrno(EPERM)) {
        return kErrorAccessDenied;
    }
    if (endsWithErrno(ENOMEM)) {
        return kErrorOutOfMemory;
    }
    return text.find("undefined symbol") != text.npos ? kErrorProcedureNotFound
                                                      : kErrorBadExeFormat;
}

// Null and all ones are names of other things to the loader.
bool IsHandle(HMODULE library) noexcept {
    return library != nullptr && library != reinterpret_cast<HMODULE>(-1);
}

bool LiesIn(HMODULE library, const void* address) noexcept {
    link_map* wanted = nullptr;
    link_map* found = nullptr;
    Dl_info info;
    return ::dlinfo(library, RTLD_DI_LINKMAP, &wanted) == 0 &&
           ::dladdr1(address, &info, reinterpret_cast<void**>(&found), RTLD_DL_LINKMAP) != 0 &&
           wanted == found;
}

}  // namespace

HMODULE LoadLibraryW(const char16_t* path) noexcept {
    ErrnoKeeper keepErrno;
    CancellationOff noCancellation;
    try {
        const std::string narrow = NarrowPath(path);
        // The loader would take the empty name for the program itself.
        void* const library = narrow.empty() ? nullptr : ::dlopen(narrow.c_str(), RTLD_NOW);
        if (library == nullptr) {
            SetLastError(narrow.empty() ? u32{kErrorModuleNotFound}
                                        : NativeErrorFromLoaderMessage(::dlerror()));
        }
        return library;
    } catch (std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
        return nullptr;
    }
}

bool FreeLibrary(HMODULE library) noexcept {
    ErrnoKeeper keepErrno;
    CancellationOff noCancellation;
    if (IsHandle(library) && ::dlclose(library) == 0) {
        return true;
    }
    SetLastError(library == nullptr ? kErrorInvalidHandle : kErrorModuleNotFound);
    return false;
}

void* GetProcAddress(HMODULE library, const char* name) noexcept {
    ErrnoKeeper keepErrno;
    if (!IsHandle(library)) {
        SetLastError(kErrorModuleNotFound);
        return nullptr;
    }
    void* const address = name[0] != '\0' ? ::dlsym(library, name) : nullptr;
    if (address == nullptr || !LiesIn(library, address)) {
        SetLastError(kErrorProcedureNotFound);
        return nullptr;
    }
    return address;
}

}  // namespace platform

#include "registry_sqlite.h"

#include <dlfcn.h>

#include "cancellation.h"
#include "platform/errors.h"

namespace platform::sqlite {
namespace {

constexpr char kLibrary[] = "libsqlite3.so.0";

constinit std::atomic<void*> s_library = nullptr;

bool BindAll(void* library) noexcept {
    bool found = true;
// NOLINTNEXTLINE(bugprone-macro-parentheses): a name
#define QX_SQLITE_FUNCTION(name) found = name.Bind(::dlsym(library, "sqlite3_" #name)) && found;
#include "registry_sqlite_functions.inc"
#undef QX_SQLITE_FUNCTION
    return found;
}

bool Load() noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff noCancellation;
    void* const library = ::dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        return false;
    }
    void* none = nullptr;
    const bool found = BindAll(library);
    if (!found || !s_library.compare_exchange_strong(none, library, std::memory_order_release)) {
        ::dlclose(library);
    }
    return found;
}

}  // namespace

// NOLINTNEXTLINE(bugprone-macro-parentheses): a name
#define QX_SQLITE_FUNCTION(name) constinit LateFunction<decltype(::sqlite3_##name)> name;
#include "registry_sqlite_functions.inc"
#undef QX_SQLITE_FUNCTION

bool Bind() noexcept {
    return s_library.load(std::memory_order_acquire) != nullptr || Load();
}

void Release() noexcept {
    if (void* const library = s_library.exchange(nullptr)) {
        ::dlclose(library);
    }
}

}  // namespace platform::sqlite

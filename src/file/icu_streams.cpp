#include "file/icu_streams.h"

// ICU's names carry its version, which its macros add.
#define NAME_AS_TEXT(name) #name
#define NAME_OF(function) NAME_AS_TEXT(function)

namespace icu_streams {
namespace {

constinit std::atomic<bool> s_bound = false;

bool BindAll(platform::HMODULE library) noexcept {
    return Adopt.Bind(library, NAME_OF(u_fadopt)) && Close.Bind(library, NAME_OF(u_fclose)) &&
           GetLine.Bind(library, NAME_OF(u_fgets)) && Write.Bind(library, NAME_OF(u_file_write));
}

}  // namespace

constinit LateFunction<decltype(::u_fadopt)> Adopt;
constinit LateFunction<decltype(::u_fclose)> Close;
constinit LateFunction<decltype(::u_fgets)> GetLine;
constinit LateFunction<decltype(::u_file_write)> Write;

bool Bind() noexcept {
    if (s_bound.load(std::memory_order_acquire)) {
        return true;
    }
    const platform::HMODULE library = platform::LoadLibraryW(u"" QXCORE_ICU_STREAMS);
    if (library == nullptr) {
        return false;
    }
    const bool found = BindAll(library);
    if (!found) {
        platform::FreeLibrary(library);
    }
    s_bound.store(found, std::memory_order_release);
    return found;
}

}  // namespace icu_streams

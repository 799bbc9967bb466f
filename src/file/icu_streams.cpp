#include "file/icu_streams.h"

#include <atomic>

#include "platform/libraries.h"

// ICU's names carry its version, which its macros add.
#define NAME_AS_TEXT(name) #name
#define NAME_OF(function) NAME_AS_TEXT(function)

namespace icu_streams {
namespace {

constinit std::atomic<bool> s_bound = false;

bool BindAll(platform::HMODULE library) noexcept {
    const auto find = [library](const char* name) {
        return platform::GetProcAddress(library, name);
    };
    return Adopt.Bind(find(NAME_OF(u_fadopt))) && Close.Bind(find(NAME_OF(u_fclose))) &&
           GetLine.Bind(find(NAME_OF(u_fgets))) && Write.Bind(find(NAME_OF(u_file_write)));
}

}  // namespace

constinit platform::LateFunction<decltype(::u_fadopt)> Adopt;
constinit platform::LateFunction<decltype(::u_fclose)> Close;
constinit platform::LateFunction<decltype(::u_fgets)> GetLine;
constinit platform::LateFunction<decltype(::u_file_write)> Write;

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

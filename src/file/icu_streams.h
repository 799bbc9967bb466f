// ICU's streams. Few processes use them, and the library that they stand in takes longer to load
// than everything else together, so it is loaded at the first use, and stays.
#ifndef QX_FILE_ICU_STREAMS_H
#define QX_FILE_ICU_STREAMS_H

#include <unicode/ustdio.h>

#include <atomic>

#include "platform/libraries.h"

// A function that is found while the process runs. Atomic since two threads may bind at once: both
// store the same.
template <typename Function>
class LateFunction {
  public:
    bool Bind(platform::HMODULE library, const char* name) noexcept {
        void* const address = platform::GetProcAddress(library, name);
        m_function.store(reinterpret_cast<Function*>(address), std::memory_order_relaxed);
        return address != nullptr;
    }

    template <typename... Arguments>
    auto operator()(Arguments... arguments) const {
        return m_function.load(std::memory_order_relaxed)(arguments...);
    }

  private:
    std::atomic<Function*> m_function = nullptr;
};

namespace icu_streams {

// True if the functions below may be called. A failure is not remembered.
bool Bind() noexcept;

extern constinit LateFunction<decltype(::u_fadopt)> Adopt;
extern constinit LateFunction<decltype(::u_fclose)> Close;
extern constinit LateFunction<decltype(::u_fgets)> GetLine;
extern constinit LateFunction<decltype(::u_file_write)> Write;

}  // namespace icu_streams

#endif

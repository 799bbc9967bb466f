// ICU's streams. Few processes use them, and the library that they stand in takes longer to load
// than everything else together, so it is loaded at the first use, and stays.
#ifndef QX_FILE_ICU_STREAMS_H
#define QX_FILE_ICU_STREAMS_H

#include <unicode/ustdio.h>

#include "platform/late_function.h"

namespace icu_streams {

// True if the functions below may be called. A failure is not remembered.
bool Bind() noexcept;

extern constinit platform::LateFunction<decltype(::u_fadopt)> Adopt;
extern constinit platform::LateFunction<decltype(::u_fclose)> Close;
extern constinit platform::LateFunction<decltype(::u_fgets)> GetLine;
extern constinit platform::LateFunction<decltype(::u_file_write)> Write;

}  // namespace icu_streams

#endif

#ifndef QX_OPTIONS_OPTION_MESSAGES_H
#define QX_OPTIONS_OPTION_MESSAGES_H

#include <cstdio>

// Prints a client's format with its arguments, or nothing for a null one, then a line end, on
// standard error, and flushes it: that may be fully buffered.
template <typename... Arguments>
void PrintOptionMessage(const char* format, Arguments... arguments) noexcept {
    if (format != nullptr) {
        // The format may be the client's own.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
        std::fprintf(stderr, format, arguments...);
#pragma GCC diagnostic pop
    }
    std::fputc('\n', stderr);
    std::fflush(stderr);
}

#endif

// The one question that neither the library nor C++ answers. Both platforms' compilers have it.
#ifndef EXAMPLES_TERMINAL_H
#define EXAMPLES_TERMINAL_H

#include <unistd.h>

// Whether somebody looks on at standard error.
inline bool HasTerminal() {
    return isatty(2) != 0;
}

#endif

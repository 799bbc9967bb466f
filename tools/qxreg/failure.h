// What ends a command before its end.
#ifndef QXREG_FAILURE_H
#define QXREG_FAILURE_H

#include <stdexcept>

// Something was not found, or was refused.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// The command line is not one that is understood.
struct WrongUse : std::runtime_error {
    using std::runtime_error::runtime_error;
};

#endif

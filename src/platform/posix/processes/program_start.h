// A program that takes a new process over.
#ifndef QX_PLATFORM_POSIX_PROCESSES_PROGRAM_START_H
#define QX_PLATFORM_POSIX_PROCESSES_PROGRAM_START_H

#include "../descriptors.h"

namespace platform {

struct ProgramStart {
    const char* m_path;
    char* const* m_arguments;
    char* const* m_environment;
    int m_directory = -1;              // to work in, or this process's own
    int m_standard[3] = {-1, -1, -1};  // above the standard streams, or this process's own
};

// Starts it with no signal held back or ignored. It gets the descriptors that are not close-on-exec
// and the standard ones. `process` is the descriptor of the new process. Returns 0 or an errno
// value, and nothing runs then.
//
// By hand, since the C library tells the process by its number, which is somebody else's when the
// host program has collected or ignored its child, and since this fails before anything runs when
// there is no descriptor for it.
int StartProgram(const ProgramStart& start, OwnedDescriptor* process) noexcept;

}  // namespace platform

#endif

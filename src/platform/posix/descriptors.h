// What holds for every descriptor that the library opens.
#ifndef QX_PLATFORM_POSIX_DESCRIPTORS_H
#define QX_PLATFORM_POSIX_DESCRIPTORS_H

#include <fcntl.h>
#include <unistd.h>

namespace platform {

// The standard streams' numbers are for them, also where the process has closed one: moves a
// descriptor that got such a number up. -1 goes through, and is the result where the table is full.
inline int AboveStandardStreams(int descriptor) noexcept {
    if (descriptor < 0 || descriptor > STDERR_FILENO) {
        return descriptor;
    }
    const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    ::close(descriptor);
    return moved;
}

}  // namespace platform

#endif

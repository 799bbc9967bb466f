#include "platform/streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "cancellation.h"
#include "platform/errors.h"

namespace platform {
namespace {

constexpr int kFirstDescriptor = 3;

std::FILE* OpenUninterrupted(const char* path, const char* mode) noexcept {
    std::FILE* stream;
    do {
        stream = std::fopen(path, mode);
    } while (stream == nullptr && errno == EINTR);
    return stream;
}

// A process whose standard descriptors are closed does not get the file in the place of one.
std::FILE* AboveStandard(std::FILE* stream, const char* mode) noexcept {
    if (stream == nullptr || ::fileno(stream) >= kFirstDescriptor) {
        return stream;
    }
    const int descriptor = ::fcntl(::fileno(stream), F_DUPFD_CLOEXEC, kFirstDescriptor);
    std::FILE* const moved = descriptor >= 0 ? ::fdopen(descriptor, mode) : nullptr;
    const int error = errno;
    if (moved == nullptr && descriptor >= 0) {
        ::close(descriptor);
    }
    std::fclose(stream);
    errno = error;
    return moved;
}

}  // namespace

std::FILE* fopen(const char* path, const char* mode) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    char own[16] = {mode[0], mode[0] != '\0' ? 'e' : '\0'};
    if (mode[0] != '\0') {
        std::snprintf(own + 2, sizeof own - 2, "%s", mode + 1);
    }
    std::FILE* const stream = AboveStandard(OpenUninterrupted(path, own), own);
    if (stream == nullptr) {
        SetLastError(NativeErrorFromErrno(errno));
    }
    return stream;
}

}  // namespace platform

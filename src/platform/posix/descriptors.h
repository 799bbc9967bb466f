// What holds for every descriptor that the library opens.
#ifndef QX_PLATFORM_POSIX_DESCRIPTORS_H
#define QX_PLATFORM_POSIX_DESCRIPTORS_H

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

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

// A descriptor that is closed unless it is passed on. To be used where cancellation is off.
class OwnedDescriptor {
  public:
    explicit OwnedDescriptor(int descriptor = -1) noexcept : m_descriptor(descriptor) {}
    ~OwnedDescriptor() {
        if (m_descriptor >= 0) {
            ::close(m_descriptor);
        }
    }
    OwnedDescriptor(OwnedDescriptor&& other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    OwnedDescriptor& operator=(OwnedDescriptor&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }

    int Get() const noexcept { return m_descriptor; }
    int Release() noexcept { return std::exchange(m_descriptor, -1); }
    explicit operator bool() const noexcept { return m_descriptor >= 0; }

  private:
    int m_descriptor;
};

// Opens as open does, close-on-exec. -1 with errno set on failure.
inline OwnedDescriptor OpenDescriptor(const char* path, int flags, mode_t mode = 0) noexcept {
    int descriptor;
    do {
        descriptor = ::open(path, flags | O_CLOEXEC, mode);
    } while (descriptor < 0 && errno == EINTR);
    return OwnedDescriptor(AboveStandardStreams(descriptor));
}

}  // namespace platform

#endif

// The last error: one word a thread, in the static part of the thread's storage so that no access
// can allocate.
#ifndef QX_PLATFORM_POSIX_LAST_ERROR_NATIVE_H
#define QX_PLATFORM_POSIX_LAST_ERROR_NATIVE_H

#include <cerrno>
#include <cstdint>

namespace platform {

extern constinit thread_local std::uint32_t t_lastError
    [[gnu::tls_model("initial-exec"), gnu::visibility("hidden")]];

inline std::uint32_t GetLastError() noexcept {
    return t_lastError;
}

inline void SetLastError(std::uint32_t error) noexcept {
    t_lastError = error;
}

// Keeps errno as the caller of an operation left it.
class ErrnoKeeper {
  public:
    ErrnoKeeper() noexcept : m_saved(errno) {}
    ~ErrnoKeeper() { errno = m_saved; }
    ErrnoKeeper(const ErrnoKeeper&) = delete;
    ErrnoKeeper& operator=(const ErrnoKeeper&) = delete;

  private:
    int m_saved;
};

// The reference platform's number for an errno value.
std::uint32_t NativeErrorFromErrno(int error) noexcept;

}  // namespace platform

#endif

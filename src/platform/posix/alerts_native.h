#ifndef QX_PLATFORM_POSIX_ALERTS_NATIVE_H
#define QX_PLATFORM_POSIX_ALERTS_NATIVE_H

#include <unistd.h>

#include <cstdint>

namespace platform {

inline bool ProcessIdToSessionId(std::uint32_t process, std::uint32_t* session) noexcept {
    *session = static_cast<std::uint32_t>(::getsid(static_cast<pid_t>(process)));
    return true;
}

inline std::uint32_t (*FindConsoleSessionFunction() noexcept)() {
    return nullptr;
}

inline bool ServicesHaveOwnSession() noexcept {
    return false;
}

}  // namespace platform

#endif

#ifndef QX_SYSTEM_HOST_NAME_H
#define QX_SYSTEM_HOST_NAME_H

#include <qxcore/result.h>

#include "platform/sockets.h"

// The host's own name in a buffer of its own.
class HostName {
  public:
    static constexpr i32 kSize = 1026;

    // Starts the process's sockets if that is what is missing.
    QXResult Read() noexcept {
        i32 outcome = platform::gethostname(m_text, kSize);
        if (outcome != 0 && platform::WSAGetLastError() == platform::kSocketsNotStarted) {
            platform::WSAStartup(platform::kSocketVersion);
            outcome = platform::gethostname(m_text, kSize);
        }
        const i32 error = outcome != 0 ? platform::WSAGetLastError() : 0;
        m_text[kSize - 1] = '\0';
        return QXResultFromNative(static_cast<u32>(error));
    }

    const char* Text() const noexcept { return m_text; }

  private:
    char m_text[kSize];
};

#endif

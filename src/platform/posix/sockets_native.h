#ifndef QX_PLATFORM_POSIX_SOCKETS_NATIVE_H
#define QX_PLATFORM_POSIX_SOCKETS_NATIVE_H

#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>

namespace platform {

struct SOCKET_ADDRESS {
    sockaddr* lpSockaddr;
    std::int32_t iSockaddrLength;
};

// Has iAddressCount entries; the addresses stand behind them.
struct SOCKET_ADDRESS_LIST {
    std::int32_t iAddressCount;
    SOCKET_ADDRESS Address[1];
};

}  // namespace platform

#endif

// Names and addresses of hosts.
#ifndef QX_PLATFORM_SOCKETS_H
#define QX_PLATFORM_SOCKETS_H

// The back end includes the system's own addrinfo, sockaddr_in and sockaddr_in6, and defines
// SOCKET_ADDRESS_LIST: a signed count, iAddressCount, and that many entries Address[i], each a
// pointer to a socket address, lpSockaddr, and its length in bytes, iSockaddrLength.
#include <sockets_native.h>

#include "platform/types.h"

namespace platform {

inline constexpr u16 kSocketVersion = 0x0202;     // MAKEWORD(2, 2)
inline constexpr i32 kSocketsNotStarted = 10093;  // WSANOTINITIALISED

// Readies the process's sockets; 0, or the error's number. A platform that needs no such thing
// gives 0.
i32 WSAStartup(u16 version) noexcept;

// The number of the calling thread's last failing operation of this group.
i32 WSAGetLastError() noexcept;

// The host's own name, terminated if it fits. 0, or -1: kSocketsNotStarted, or what the system
// says.
i32 gethostname(char* name, i32 size) noexcept;

// The system's own resolver, with its records and its result: 0, or one of its numbers. Blocks for
// as long as name servers take; the thread is not cancelled meanwhile.
i32 getaddrinfo(const char* node, const char* service, const addrinfo* hints,
                addrinfo** result) noexcept;
void freeaddrinfo(addrinfo* list) noexcept;

// The machine's own addresses of one family, AF_INET or AF_INET6, with their scope identifiers, in
// one block from the C heap. Null if there are none or the system does not tell. On the reference
// platform this is SIO_ADDRESS_LIST_QUERY on a socket of that family.
SOCKET_ADDRESS_LIST* QueryAddressList(i32 family) noexcept;

}  // namespace platform

#endif

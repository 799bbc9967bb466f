#ifndef QX_PLATFORM_WINDOWS_SOCKETS_NATIVE_H
#define QX_PLATFORM_WINDOWS_SOCKETS_NATIVE_H

#include <winsock2.h>
// Behind the line above, which it needs.
#include <ws2tcpip.h>

#include <cstdlib>

#include "system_headers.h"

namespace platform {

using ::SOCKET_ADDRESS_LIST;

inline i32 WSAStartup(u16 version) noexcept {
    WSADATA ignored;
    return ::WSAStartup(version, &ignored);
}

inline i32 WSAGetLastError() noexcept {
    return ::WSAGetLastError();
}

inline i32 gethostname(char* name, i32 size) noexcept {
    return ::gethostname(name, size);
}

inline i32 getaddrinfo(const char* node, const char* service, const addrinfo* hints,
                       addrinfo** result) noexcept {
    return ::getaddrinfo(node, service, hints, result);
}

inline void freeaddrinfo(addrinfo* list) noexcept {
    ::freeaddrinfo(list);
}

// The first call serves only to learn the size.
inline SOCKET_ADDRESS_LIST* ReadAddressList(SOCKET socket) noexcept {
    DWORD size = 0;
    ::WSAIoctl(socket, SIO_ADDRESS_LIST_QUERY, nullptr, 0, nullptr, 0, &size, nullptr, nullptr);
    void* const block = size != 0 ? std::malloc(size) : nullptr;
    if (block != nullptr && ::WSAIoctl(socket, SIO_ADDRESS_LIST_QUERY, nullptr, 0, block, size,
                                       &size, nullptr, nullptr) != 0) {
        std::free(block);
        return nullptr;
    }
    return static_cast<SOCKET_ADDRESS_LIST*>(block);
}

inline SOCKET_ADDRESS_LIST* QueryAddressList(i32 family) noexcept {
    const SOCKET socket = ::socket(family, SOCK_STREAM, IPPROTO_TCP);
    if (socket == INVALID_SOCKET) {
        return nullptr;
    }
    SOCKET_ADDRESS_LIST* const list = ReadAddressList(socket);
    ::closesocket(socket);
    return list;
}

}  // namespace platform

#endif

#include "platform/sockets.h"

#include <ifaddrs.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "cancellation.h"
#include "platform/errors.h"

namespace platform {
namespace {

std::size_t AddressSize(i32 family) noexcept {
    return family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6);
}

// An interface that has no address of its own stands in the list too.
bool IsOfFamily(const ifaddrs* interface, i32 family) noexcept {
    return interface->ifa_addr != nullptr && interface->ifa_addr->sa_family == family;
}

std::size_t CountAddresses(const ifaddrs* interfaces, i32 family) noexcept {
    std::size_t count = 0;
    for (const ifaddrs* each = interfaces; each != nullptr; each = each->ifa_next) {
        count += IsOfFamily(each, family);
    }
    return count;
}

void CopyAddresses(const ifaddrs* interfaces, i32 family, SOCKET_ADDRESS_LIST* list,
                   std::byte* storage) noexcept {
    const std::size_t size = AddressSize(family);
    for (const ifaddrs* each = interfaces; each != nullptr; each = each->ifa_next) {
        if (IsOfFamily(each, family)) {
            std::memcpy(storage, each->ifa_addr, size);
            list->Address[list->iAddressCount++] = {reinterpret_cast<sockaddr*>(storage),
                                                    static_cast<i32>(size)};
            storage += size;
        }
    }
}

SOCKET_ADDRESS_LIST* CopyList(const ifaddrs* interfaces, i32 family) noexcept {
    const std::size_t count = CountAddresses(interfaces, family);
    const std::size_t head = sizeof(SOCKET_ADDRESS_LIST) + count * sizeof(SOCKET_ADDRESS);
    void* const block = count != 0 ? std::malloc(head + count * AddressSize(family)) : nullptr;
    if (block == nullptr) {
        return nullptr;
    }
    auto* const list = static_cast<SOCKET_ADDRESS_LIST*>(block);
    list->iAddressCount = 0;
    CopyAddresses(interfaces, family, list, static_cast<std::byte*>(block) + head);
    return list;
}

}  // namespace

// Sockets are always ready.
i32 WSAStartup(u16) noexcept {
    return 0;
}

i32 WSAGetLastError() noexcept {
    return static_cast<i32>(GetLastError());
}

i32 gethostname(char* name, i32 size) noexcept {
    const ErrnoKeeper keepErrno;
    if (::gethostname(name, static_cast<std::size_t>(size)) != 0) {
        SetLastError(NativeErrorFromErrno(errno));
        return -1;
    }
    return 0;
}

i32 getaddrinfo(const char* node, const char* service, const addrinfo* hints,
                addrinfo** result) noexcept {
    const CancellationOff whole;
    const int before = errno;
    const i32 answer = ::getaddrinfo(node, service, hints, result);
    // That answer alone leaves it to errno to say more.
    if (answer != EAI_SYSTEM) {
        errno = before;
    }
    return answer;
}

void freeaddrinfo(addrinfo* list) noexcept {
    const ErrnoKeeper keepErrno;
    if (list != nullptr) {
        ::freeaddrinfo(list);
    }
}

SOCKET_ADDRESS_LIST* QueryAddressList(i32 family) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    ifaddrs* interfaces = nullptr;
    if (::getifaddrs(&interfaces) != 0) {
        return nullptr;
    }
    SOCKET_ADDRESS_LIST* const list = CopyList(interfaces, family);
    ::freeifaddrs(interfaces);
    return list;
}

}  // namespace platform

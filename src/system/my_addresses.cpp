#include "system/my_addresses.h"

#include <qxcore/host.h>
#include <qxcore/string.h>

#include <cstdlib>
#include <cstring>

#include "platform/sockets.h"
#include "sync/first_use_mutex.h"
#include "sync/mutex_holder.h"

namespace {

constexpr u8 kLoopback[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
constexpr u8 kLinkLocalLoopback[16] = {0xFE, 0x80, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};

constinit FirstUseMutex s_addressMutex("QXGetMyAddressInformation");
constinit bool s_addressReady = false;
constinit platform::SOCKET_ADDRESS_LIST* s_ipv4Addresses = nullptr;
constinit platform::SOCKET_ADDRESS_LIST* s_ipv6Addresses = nullptr;
constinit addrinfo* s_interfaceList = nullptr;
constinit addrinfo* s_localhostList = nullptr;
// Takes the place of the machine's own fe80::1%1, at the head of the list of "localhost".
constinit addrinfo s_loopbackRecord = {};
constinit sockaddr_in6 s_loopbackAddress = {};

void PrepareLoopbackRecord() {
    s_loopbackAddress.sin6_family = AF_INET6;
    s_loopbackAddress.sin6_scope_id = 1;
    std::memcpy(&s_loopbackAddress.sin6_addr, kLinkLocalLoopback, sizeof kLinkLocalLoopback);
    s_loopbackRecord.ai_family = AF_INET6;
    s_loopbackRecord.ai_socktype = SOCK_STREAM;
    s_loopbackRecord.ai_protocol = IPPROTO_TCP;
    s_loopbackRecord.ai_addrlen = sizeof s_loopbackAddress;
    s_loopbackRecord.ai_addr = reinterpret_cast<sockaddr*>(&s_loopbackAddress);
    if (s_localhostList != nullptr) {
        s_loopbackRecord.ai_canonname = s_localhostList->ai_canonname;
    }
}

void ResolveLocalhost() {
    addrinfo hints = {};
    hints.ai_flags = AI_CANONNAME;
    platform::getaddrinfo("localhost", nullptr, &hints, &s_localhostList);
}

// Appends records to the interface list; their addresses stay where the query put them.
class InterfaceListTail {
  public:
    void Append(sockaddr* address, size_t length) {
        auto* const record = static_cast<addrinfo*>(std::calloc(1, sizeof(addrinfo)));
        if (record == nullptr) {
            return;
        }
        record->ai_family = address->sa_family;
        record->ai_addrlen = static_cast<decltype(record->ai_addrlen)>(length);
        record->ai_addr = address;
        *m_next = record;
        m_next = &record->ai_next;
    }

  private:
    addrinfo** m_next = &s_interfaceList;
};

bool Is(const sockaddr_in6* address, const u8 (&bytes)[16]) {
    return std::memcmp(&address->sin6_addr, bytes, sizeof bytes) == 0;
}

// One such entry alone: a further one is an ordinary address.
bool IsFirstLinkLocalLoopback(const sockaddr_in6* address) {
    return Is(address, kLinkLocalLoopback) && address->sin6_scope_id == 1 &&
           s_localhostList != &s_loopbackRecord;
}

void AppendIPv6(sockaddr* entry, InterfaceListTail& tail) {
    const auto* const address = reinterpret_cast<const sockaddr_in6*>(entry);
    if (Is(address, kLoopback)) {
        return;
    }
    if (IsFirstLinkLocalLoopback(address)) {
        s_loopbackRecord.ai_next = s_localhostList;
        s_localhostList = &s_loopbackRecord;
        return;
    }
    tail.Append(entry, sizeof(sockaddr_in6));
}

template <typename Take>
void ForEachAddress(const platform::SOCKET_ADDRESS_LIST* list, Take take) {
    for (i32 i = 0; list != nullptr && i < list->iAddressCount; ++i) {
        take(list->Address[i].lpSockaddr);
    }
}

void NameFirstInterface() {
    if (s_localhostList == nullptr || s_localhostList->ai_canonname == nullptr ||
        s_interfaceList == nullptr) {
        return;
    }
    const char* const name = s_localhostList->ai_canonname;
    auto* const copy = static_cast<char*>(std::calloc(std::strlen(name) + 1, 1));
    if (copy != nullptr) {
        s_interfaceList->ai_canonname = QXStrCpyA(copy, name);
    }
}

void BuildLists() {
    ResolveLocalhost();
    s_ipv4Addresses = platform::QueryAddressList(AF_INET);
    s_ipv6Addresses = platform::QueryAddressList(AF_INET6);
    PrepareLoopbackRecord();
    InterfaceListTail tail;
    ForEachAddress(s_ipv4Addresses,
                   [&](sockaddr* entry) { tail.Append(entry, sizeof(sockaddr_in)); });
    ForEachAddress(s_ipv6Addresses, [&](sockaddr* entry) { AppendIPv6(entry, tail); });
    NameFirstInterface();
    s_addressReady = true;
}

}  // namespace

QXResult QXGetMyAddressInformation(addrinfo** interfaceList, addrinfo** localhostList) {
    *interfaceList = nullptr;
    const MutexHolder hold(s_addressMutex.Get());
    if (!s_addressReady) {
        if (platform::WSAStartup(platform::kSocketVersion) != 0) {
            return QX_E_FAIL;
        }
        BuildLists();
    }
    *interfaceList = s_interfaceList;
    *localhostList = s_localhostList;
    return QX_S_OK;
}

void ReleaseMyAddresses() noexcept {
    s_addressMutex.Destroy();
}

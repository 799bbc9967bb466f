#include <qxcore/host.h>
#include <qxcore/string.h>
#include <qxcore/transform.h>

#include <cstring>
#include <memory>

#include "platform/sockets.h"
#include "system/host_name.h"

namespace {

// The reserved domain of IPv6 addresses that are written as host names.
constexpr char QX_IPV6_LITERAL_SUFFIX[] = ".ipv6-literal.net";

// The characters that such a name cannot hold come back, also behind the cut, where nobody looks.
void ReadAsLiteral(char* name, size_t length, char* suffix) {
    *suffix = '\0';
    for (char* each = name; each != name + length; ++each) {
        if (*each == '-') {
            *each = ':';
        } else if (*each == 's') {
            *each = '%';
        }
    }
}

const void* AddressBytes(const addrinfo* record) {
    return record->ai_family == AF_INET
               ? static_cast<const void*>(
                     &reinterpret_cast<const sockaddr_in*>(record->ai_addr)->sin_addr)
               : &reinterpret_cast<const sockaddr_in6*>(record->ai_addr)->sin6_addr;
}

// 0 for a family that never matches.
size_t AddressLength(i32 family) {
    return family == AF_INET ? sizeof(in_addr) : family == AF_INET6 ? sizeof(in6_addr) : 0;
}

bool IsSameAddress(const addrinfo* first, const addrinfo* second) {
    const size_t length = AddressLength(first->ai_family);
    return length != 0 && second->ai_family == first->ai_family &&
           std::memcmp(AddressBytes(first), AddressBytes(second), length) == 0;
}

bool HasAddress(const addrinfo* list, const addrinfo* record) {
    for (; list != nullptr; list = list->ai_next) {
        if (IsSameAddress(record, list)) {
            return true;
        }
    }
    return false;
}

}  // namespace

QXResult QXGetHostNameA(char* buffer, uint32_t size) {
    HostName name;
    if (const QXResult result = name.Read(); QX_FAILED(result)) {
        return result;
    }
    const size_t needed = std::strlen(name.Text()) + 1;
    if (size < needed) {
        return QX_E_FAIL;
    }
    std::memcpy(buffer, name.Text(), needed);
    return QX_S_OK;
}

QXResult QXGetHostName(wchar* buffer, uint32_t size) {
    char name[HostName::kSize];
    if (const QXResult result = QXGetHostNameA(name, sizeof name); QX_FAILED(result)) {
        return result;
    }
    if (size < std::strlen(name) + 1) {
        return QX_E_FAIL;
    }
    QXAnsiToUnicode(buffer, name, size);
    return QX_S_OK;
}

int16_t QXCompareAddressInformation(const addrinfo* first, const addrinfo* second) {
    for (; first != nullptr; first = first->ai_next) {
        if (HasAddress(second, first)) {
            return 1;
        }
    }
    return 0;
}

int32_t QXgetaddrinfo(const char* node, const char* service, const addrinfo* hints,
                      addrinfo** result) {
    const size_t length = std::strlen(node);
    const auto copy = std::make_unique_for_overwrite<char[]>(length + 1);
    std::memcpy(copy.get(), node, length + 1);
    QXStrToLowerA(copy.get());
    if (char* const suffix = QXStrStrA(copy.get(), QX_IPV6_LITERAL_SUFFIX)) {
        ReadAsLiteral(copy.get(), length, suffix);
    }
    return platform::getaddrinfo(copy.get(), service, hints, result);
}

void QXfreeaddrinfo(addrinfo* list) {
    platform::freeaddrinfo(list);
}

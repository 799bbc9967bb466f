#include "system/local_host.h"

#include <qxcore/host.h>
#include <qxcore/string.h>

#include <algorithm>
#include <atomic>
#include <exception>
#include <map>
#include <string>
#include <string_view>

#include "platform/multibyte.h"
#include "platform/sockets.h"
#include "sync/first_use_mutex.h"
#include "sync/mutex_holder.h"

namespace {

constexpr size_t kNameLimit = 1025;

// Whether a lower-cased name is this machine, for each name that was asked about.
using HostCache = std::map<std::string, i16, std::less<>>;

constinit FirstUseMutex s_hostCacheMutex("QXIsThisMyComputerA");
constinit HostCache* s_hostCache = nullptr;
constinit std::atomic<bool> s_hostCacheReady = false;
constinit addrinfo* s_myInterfaceAddresses = nullptr;
constinit addrinfo* s_myLocalhostAddresses = nullptr;

class LowerCaseName {
  public:
    static LowerCaseName OfThisHost() {
        LowerCaseName name;
        platform::gethostname(name.m_text, kNameLimit);
        return name.Lowered();
    }
    static LowerCaseName Of(const char* source) {
        LowerCaseName name;
        QXStrNCpyA(name.m_text, source, std::min(QXStrLenA(source) + 1, kNameLimit));
        return name.Lowered();
    }

    const char* Text() const { return m_text; }

  private:
    LowerCaseName() { m_text[0] = '\0'; }
    LowerCaseName& Lowered() {
        m_text[kNameLimit] = '\0';
        QXStrToLowerA(m_text);
        return *this;
    }

    char m_text[kNameLimit + 1];
};

// A failure is caught by the caller, and the next call tries again.
void Seed() {
    if (s_hostCache == nullptr) {
        s_hostCache = new HostCache;
    }
    const LowerCaseName host = LowerCaseName::OfThisHost();
    QXGetMyAddressInformation(&s_myInterfaceAddresses, &s_myLocalhostAddresses);
    for (const char* name : {host.Text(), "localhost", "127.0.0.1", "::1", ""}) {
        (*s_hostCache)[name] = 1;
    }
    s_hostCacheReady.store(true, std::memory_order_release);
}

bool SeedAtFirstUse() {
    const MutexHolder hold(s_hostCacheMutex.Get());
    if (s_hostCacheReady.load(std::memory_order_relaxed)) {
        return true;
    }
    if (platform::WSAStartup(platform::kSocketVersion) != 0) {
        return false;
    }
    try {
        Seed();
    } catch (const std::exception&) {
        return false;
    }
    return true;
}

i16 CompareByAddress(const char* name) {
    addrinfo* list = nullptr;
    if (QXgetaddrinfo(name, nullptr, nullptr, &list) != 0) {
        return 0;
    }
    i16 isHere = QXCompareAddressInformation(list, s_myLocalhostAddresses);
    if (isHere == 0) {
        isHere = QXCompareAddressInformation(list, s_myInterfaceAddresses);
    }
    QXfreeaddrinfo(list);
    return isHere;
}

// An answer that memory does not suffice to keep is an answer all the same.
i16 Answer(const char* name) {
    const MutexHolder hold(s_hostCacheMutex.Get());
    i16 isHere = 0;
    try {
        const std::string_view key = name;
        const auto known = s_hostCache->find(key);
        if (known != s_hostCache->end()) {
            return known->second;
        }
        isHere = CompareByAddress(name);
        s_hostCache->emplace(key, isHere);
    } catch (const std::exception&) {
    }
    return isHere;
}

}  // namespace

int16_t QXIsThisMyComputerA(const char* name) {
    if (!s_hostCacheReady.load(std::memory_order_acquire) && !SeedAtFirstUse()) {
        return 0;
    }
    return Answer(LowerCaseName::Of(name).Text());
}

int16_t QXIsThisMyComputerW(const wchar* name) {
    char narrow[kNameLimit + 1];
    const i32 length = static_cast<i32>(QXStrLenW(name)) + 1;
    const i32 stored = platform::WideCharToMultiByte(name, length, narrow, sizeof narrow);
    return stored != 0 ? QXIsThisMyComputerA(narrow) : i16{0};
}

void ReleaseLocalHostCache() noexcept {
    s_hostCacheReady.store(false, std::memory_order_relaxed);
    delete s_hostCache;
    s_hostCache = nullptr;
    s_hostCacheMutex.Destroy();
}

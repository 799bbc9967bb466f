#include "platform/system_figures.h"

#include <sys/resource.h>
#include <sys/sysinfo.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <string>
#include <utility>
#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#include "cancellation.h"
#include "password_entry.h"
#include "platform/errors.h"
#include "platform/multibyte.h"

namespace platform {
namespace {

constexpr u32 kPlatformUnix = 4;
constexpr u64 kAddressSpace = sizeof(void*) == 8 ? u64{1} << 47 : u64{3} << 30;

u64 PageSize() noexcept {
    return static_cast<u64>(::sysconf(_SC_PAGESIZE));
}

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// The kernel's estimate of what can be had without swapping; 0 without /proc.
u64 AvailableMemory() noexcept {
    const File file(std::fopen("/proc/meminfo", "re"));
    char line[128];
    while (file != nullptr && std::fgets(line, sizeof line, file.get()) != nullptr) {
        unsigned long long kibibytes;
        if (std::sscanf(line, "MemAvailable: %llu kB", &kibibytes) == 1) {
            return u64{kibibytes} * 1024;
        }
    }
    return 0;
}

// Of the process's address space; 0 without /proc.
u64 AddressSpaceInUse() noexcept {
    const File file(std::fopen("/proc/self/statm", "re"));
    unsigned long long pages;
    return file != nullptr && std::fscanf(file.get(), "%llu", &pages) == 1 ? pages * PageSize() : 0;
}

u64 AddressSpaceLimit() noexcept {
    rlimit limit;
    return ::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY
               ? std::min<u64>(limit.rlim_cur, kAddressSpace)
               : kAddressSpace;
}

#if defined(__x86_64__) || defined(__i386__)
// As the processor's maker counts: the extended numbers go with the base family 15, the extended
// model with 6 too.
void ReadProcessor(SYSTEM_INFO* info) noexcept {
    info->dwProcessorType = sizeof(void*) == 8 ? 8664 : 586;
    unsigned signature = 0;
    unsigned ignored;
    __get_cpuid(1, &signature, &ignored, &ignored, &ignored);
    const unsigned family = signature >> 8 & 15;
    const unsigned extendedModel = family == 6 || family == 15 ? signature >> 16 & 15 : 0;
    const unsigned model = extendedModel << 4 | (signature >> 4 & 15);
    info->wProcessorLevel = static_cast<u16>(family == 15 ? 15 + (signature >> 20 & 255) : family);
    info->wProcessorRevision = static_cast<u16>(model << 8 | (signature & 15));
}
#else
void ReadProcessor(SYSTEM_INFO*) noexcept {}
#endif

bool StoreName(const std::string& name, char16_t* buffer, u32* size) noexcept {
    const i32 length = static_cast<i32>(name.size()) + 1;
    const i32 needed = MultiByteToWideChar(name.c_str(), length, nullptr, 0);
    const u32 capacity = std::exchange(*size, static_cast<u32>(needed));
    if (capacity < *size) {
        SetLastError(kErrorInsufficientBuffer);
        return false;
    }
    MultiByteToWideChar(name.c_str(), length, buffer, needed);
    return true;
}

}  // namespace

bool GlobalMemoryStatusEx(MEMORYSTATUSEX* status) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    struct sysinfo info;
    if (::sysinfo(&info) != 0) {
        SetLastError(NativeErrorFromErrno(errno));
        return false;
    }
    const u64 available = AvailableMemory();
    const u64 limit = AddressSpaceLimit();
    status->ullTotalPhys = u64{info.totalram} * info.mem_unit;
    status->ullAvailPhys = available != 0 ? available : u64{info.freeram} * info.mem_unit;
    status->ullTotalVirtual = limit;
    status->ullAvailVirtual = limit - std::min(limit, AddressSpaceInUse());
    return true;
}

void GetSystemInfo(SYSTEM_INFO* info) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    info->dwPageSize = static_cast<u32>(PageSize());
    info->dwAllocationGranularity = info->dwPageSize;
    info->dwNumberOfProcessors = static_cast<u32>(::sysconf(_SC_NPROCESSORS_ONLN));
    ReadProcessor(info);
}

bool GetVersionExA(OSVERSIONINFOA* version) noexcept {
    const ErrnoKeeper keepErrno;
    utsname name;
    if (::uname(&name) != 0) {
        SetLastError(NativeErrorFromErrno(errno));
        return false;
    }
    unsigned numbers[3] = {};
    std::sscanf(name.release, "%u.%u.%u", &numbers[0], &numbers[1], &numbers[2]);
    version->dwMajorVersion = numbers[0];
    version->dwMinorVersion = numbers[1];
    version->dwBuildNumber = numbers[2];
    version->dwPlatformId = kPlatformUnix;
    version->szCSDVersion[0] = '\0';
    return true;
}

bool GetUserNameW(char16_t* buffer, u32* size) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    try {
        const uid_t user = ::geteuid();
        PasswordEntry entry;
        if (const int error = FindPasswordEntry(user, &entry)) {
            SetLastError(NativeErrorFromErrno(error));
            return false;
        }
        return StoreName(entry.m_name.empty() ? std::to_string(user) : entry.m_name, buffer, size);
    } catch (const std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
        return false;
    }
}

}  // namespace platform

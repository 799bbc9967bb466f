#ifndef QX_PLATFORM_POSIX_SYSTEM_FIGURES_NATIVE_H
#define QX_PLATFORM_POSIX_SYSTEM_FIGURES_NATIVE_H

#include <cstdint>

namespace platform {

// The fields that somebody reads, in the reference platform's order and size.
struct MEMORYSTATUSEX {
    std::uint32_t dwLength;
    std::uint32_t dwMemoryLoad;
    std::uint64_t ullTotalPhys;
    std::uint64_t ullAvailPhys;
    std::uint64_t ullTotalPageFile;
    std::uint64_t ullAvailPageFile;
    std::uint64_t ullTotalVirtual;
    std::uint64_t ullAvailVirtual;
    std::uint64_t ullAvailExtendedVirtual;
};
static_assert(sizeof(MEMORYSTATUSEX) == 64);

struct SYSTEM_INFO {
    std::uint32_t dwPageSize;
    std::uint32_t dwNumberOfProcessors;
    std::uint32_t dwProcessorType;
    std::uint32_t dwAllocationGranularity;
    std::uint16_t wProcessorLevel;
    std::uint16_t wProcessorRevision;
};

struct OSVERSIONINFOA {
    std::uint32_t dwOSVersionInfoSize;
    std::uint32_t dwMajorVersion;
    std::uint32_t dwMinorVersion;
    std::uint32_t dwBuildNumber;
    std::uint32_t dwPlatformId;
    char szCSDVersion[128];
};
static_assert(sizeof(OSVERSIONINFOA) == 148);

}  // namespace platform

#endif

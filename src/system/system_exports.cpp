#include <qxcore/system.h>

#include "platform/errors.h"
#include "platform/system_figures.h"

static_assert(sizeof(QXSystemInfoRecord) == 64);
static_assert(offsetof(QXSystemInfoRecord, allocationGranularity) == 32);
static_assert(offsetof(QXSystemInfoRecord, processorType) == 40);
static_assert(offsetof(QXSystemInfoRecord, buildNumber) == 56);

namespace {

void StoreMemory(QXSystemInfoRecord* info) {
    platform::MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    platform::GlobalMemoryStatusEx(&memory);
    info->totalPhysicalMemory = memory.ullTotalPhys;
    info->availablePhysicalMemory = memory.ullAvailPhys;
    info->totalVirtualMemory = memory.ullTotalVirtual;
    info->availableVirtualMemory = memory.ullAvailVirtual;
}

void StoreProcessors(QXSystemInfoRecord* info) {
    platform::SYSTEM_INFO system = {};
    platform::GetSystemInfo(&system);
    info->allocationGranularity = system.dwAllocationGranularity;
    info->pageSize = system.dwPageSize;
    info->processorType = static_cast<u16>(system.dwProcessorType);
    info->processorLevel = system.wProcessorLevel;
    info->processorRevision = system.wProcessorRevision;
    info->numberOfProcessors = static_cast<u16>(system.dwNumberOfProcessors);
}

QXResult StoreVersion(QXSystemInfoRecord* info) {
    platform::OSVERSIONINFOA version = {};
    version.dwOSVersionInfoSize = sizeof version;
    if (!platform::GetVersionExA(&version)) {
        return QXResultFromNative(platform::GetLastError());
    }
    info->platformId = static_cast<u16>(version.dwPlatformId);
    info->reservedZero = 0;
    info->majorVersion = static_cast<u16>(version.dwMajorVersion);
    info->minorVersion = static_cast<u16>(version.dwMinorVersion);
    info->buildNumber = static_cast<u16>(version.dwBuildNumber);
    return QX_S_OK;
}

}  // namespace

QXResult QXGetSystemInfo(QXSystemInfoRecord* info, uint32_t) {
    StoreMemory(info);
    StoreProcessors(info);
    return StoreVersion(info);
}

QXResult QXGetUserName(wchar* buffer, uint32_t size) {
    u32 units = size;
    if (!platform::GetUserNameW(buffer, &units)) {
        return QXResultFromNative(platform::GetLastError());
    }
    return QX_S_OK;
}

// A mapping's handle is the platform's own. The library keeps no table of handles and views.
#include <qxcore/shared_mem.h>
#include <qxcore/transform.h>

#include <cstring>
#include <iterator>

#include "core/exception.h"
#include "platform/shared.h"

namespace {

constexpr u32 kAccessBits = QX_FILE_READ | QX_FILE_WRITE;
constexpr u32 kCreateBits = QX_FILE_CREATE | QX_FILE_EXCLUSIVE;

// The success that says that the mapping is new.
constexpr QXResult kNew = 2;

// The prefix keeps mappings apart from other objects of the system.
class KernelName {
  public:
    // False for a name that does not fit, or is no text.
    bool Build(const char* name) {
        constexpr std::size_t kPrefixUnits = std::size(kPrefix) - 1;
        constexpr std::size_t kRoom = std::size(decltype(m_units){}) - kPrefixUnits;
        std::memcpy(m_units, kPrefix, kPrefixUnits * sizeof(wchar));
        return QXAnsiToUnicode(m_units + kPrefixUnits, name, kRoom) < kRoom;
    }

    const wchar* Text() const { return m_units; }

  private:
    static constexpr wchar kPrefix[] = u"SHM:";

    wchar m_units[512];
};

// Everybody has full access.
platform::HANDLE CreateMapping(const wchar* name, u32 size) {
    platform::SECURITY_DESCRIPTOR descriptor;
    platform::InitializeSecurityDescriptor(&descriptor, platform::kSecurityDescriptorRevision);
    platform::SetSecurityDescriptorDacl(&descriptor, true, nullptr, false);
    platform::SECURITY_ATTRIBUTES attributes;
    attributes.nLength = sizeof attributes;
    attributes.lpSecurityDescriptor = &descriptor;
    attributes.bInheritHandle = 1;
    return platform::CreateFileMappingW(QX_INVALID_HANDLE, &attributes, platform::kPageReadWrite, 0,
                                        size, name);
}

platform::HANDLE OpenMapping(const wchar* name, u32 flags) {
    const u32 bits = flags & kAccessBits;
    const u32 access =
        bits == 0 || bits == QX_FILE_READ ? platform::kFileMapRead : platform::kFileMapWrite;
    return platform::OpenFileMappingW(access, true, name);
}

// The whole word counts: one with other bits set stands for no access.
u32 ViewAccess(u32 flags) {
    switch (flags) {
        case QX_FILE_WRITE:
        case QX_FILE_READ | QX_FILE_WRITE:
            return platform::kFileMapWrite;
        case QX_FILE_READ:
            return platform::kFileMapRead;
        default:
            return 0;
    }
}

}  // namespace

QXResult QXSharedMemOpen(const char* name, uint32_t flags, uint32_t, uint32_t size, QXHandle* out) {
    *out = QX_INVALID_HANDLE;
    KernelName kernelName;
    if (!kernelName.Build(name)) {
        return QX_E_FAIL;
    }
    const platform::HANDLE mapping = (flags & kCreateBits) != 0
                                         ? CreateMapping(kernelName.Text(), size)
                                         : OpenMapping(kernelName.Text(), flags);
    const u32 error = platform::GetLastError();
    if (mapping == nullptr) {
        return QXResultFromNative(error);
    }
    const bool existed = error == platform::kErrorAlreadyExists;
    if (existed && (flags & kCreateBits) == kCreateBits) {
        platform::CloseHandle(mapping);
        return QX_E_FAIL;
    }
    *out = mapping;
    return existed ? QX_S_OK : kNew;
}

QXResult QXSharedMemClose(QXHandle mapping) {
    return ResultOf(platform::CloseHandle(mapping));
}

QXResult QXSharedMemAttach(QXHandle mapping, uint32_t flags, void** address) {
    void* const view = platform::MapViewOfFile(mapping, ViewAccess(flags), 0, 0, 0);
    if (view == nullptr) {
        return ResultOf(false);
    }
    *address = view;
    return QX_S_OK;
}

QXResult QXSharedMemDetach(void* address) {
    return ResultOf(platform::UnmapViewOfFile(address));
}

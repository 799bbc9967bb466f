#include "platform/shared.h"

#include <sys/mman.h>

#include <memory>
#include <new>

#include "../cancellation.h"
#include "../checked_handles.h"
#include "named_object.h"
#include "platform/errors.h"
#include "platform/sync.h"
#include "view_table.h"

namespace platform {
namespace {

constexpr u64 kPageSize = 4096;
constexpr u32 kAllAccess = kFileMapRead | kFileMapWrite;

class FileMapping final : public CheckedObject {
  public:
    FileMapping(const ObjectPath& path, u32 access) noexcept : m_path(path), m_access(access) {}

    ~FileMapping() override {
        const CancellationOff stay;
        m_object.m_file = OwnedDescriptor();
        RemoveUnusedObject(m_path);
    }

    // Blocks and fails as OpenNamedObject.
    u32 Open(const NewObject* fresh) noexcept {
        m_object = OpenNamedObject(m_path, fresh);
        return m_object.m_error;
    }

    bool Existed() const noexcept { return m_object.m_existed; }

    // Null with the last error set.
    void* Map(u32 access) const noexcept;

    u32 Wait(u32) noexcept override {
        SetLastError(kErrorInvalidHandle);
        return kWaitFailed;
    }

  private:
    const ObjectPath m_path;
    const u32 m_access;
    OpenedObject m_object;
};

int ProtectionOf(u32 access) noexcept {
    if ((access & kFileMapWrite) != 0) {
        return PROT_READ | PROT_WRITE;
    }
    return (access & kFileMapRead) != 0 ? PROT_READ : PROT_NONE;
}

HANDLE OpenMapping(const char16_t* name, u32 access, const NewObject* fresh) noexcept {
    std::unique_ptr<FileMapping> mapping(new (std::nothrow) FileMapping(ObjectPath(name), access));
    if (mapping == nullptr) {
        SetLastError(kErrorOutOfMemory);
        return nullptr;
    }
    const u32 error = mapping->Open(fresh);
    if (error != 0) {
        mapping.reset();
        SetLastError(error);
        return nullptr;
    }
    SetLastError(fresh != nullptr && mapping->Existed() ? kErrorAlreadyExists : kErrorSuccess);
    return NewCheckedHandle(mapping.release());
}

}  // namespace

// The view is put down only after it is there, and taken off before it goes: its address is nobody
// else's meanwhile.
void* FileMapping::Map(u32 access) const noexcept {
    if ((access & ~m_access) != 0) {
        SetLastError(kErrorAccessDenied);
        return nullptr;
    }
    std::unique_ptr<View> view(new (std::nothrow) View(m_object.m_size, m_path));
    if (view == nullptr) {
        SetLastError(kErrorOutOfMemory);
        return nullptr;
    }
    const ErrnoKeeper keepErrno;
    void* const address = ::mmap(nullptr, m_object.m_size, ProtectionOf(access), MAP_SHARED,
                                 m_object.m_file.Get(), 0);
    if (address == MAP_FAILED) {
        SetLastError(NativeErrorFromErrno(errno));
        return nullptr;
    }
    InsertView(address, view.release());
    return address;
}

HANDLE CreateFileMappingW(HANDLE, const SECURITY_ATTRIBUTES*, u32, u32, u32 size,
                          const char16_t* name) noexcept {
    if (size == 0) {
        SetLastError(kErrorInvalidParameter);
        return nullptr;
    }
    const NewObject fresh{(size + kPageSize - 1) / kPageSize * kPageSize, nullptr, 0};
    return OpenMapping(name, kAllAccess, &fresh);
}

HANDLE OpenFileMappingW(u32 access, bool, const char16_t* name) noexcept {
    return OpenMapping(name, access, nullptr);
}

void* MapViewOfFile(HANDLE mapping, u32 access, u32, u32, std::size_t) noexcept {
    const CheckedReference object(mapping);
    const auto* const found = dynamic_cast<FileMapping*>(object.Get());
    if (found == nullptr) {
        SetLastError(kErrorInvalidHandle);
        return nullptr;
    }
    return found->Map(access);
}

bool UnmapViewOfFile(const void* address) noexcept {
    const std::unique_ptr<View> view(RemoveView(address));
    if (view == nullptr) {
        SetLastError(kErrorInvalidAddress);
        return false;
    }
    const ErrnoKeeper keepErrno;
    ::munmap(const_cast<void*>(address), view->m_size);
    RemoveUnusedObject(view->m_path);
    return true;
}

}  // namespace platform

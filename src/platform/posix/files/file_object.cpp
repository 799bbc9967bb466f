#include "file_object.h"

#include <sys/stat.h>

#include <new>
#include <typeinfo>

#include "../cancellation.h"
#include "platform/errors.h"
#include "platform/files.h"

namespace platform {

FileObject::~FileObject() {
    const CancellationOff whole;
    if (!m_pathToDelete.empty()) {
        DeleteFile();
    }
}

bool FileObject::MayRead() const noexcept {
    return (m_access & kGenericRead) != 0;
}

bool FileObject::MayWrite() const noexcept {
    return (m_access & kGenericWrite) != 0;
}

void FileObject::DeleteFile() const noexcept {
    struct stat named;
    struct stat opened;
    if (::lstat(m_pathToDelete.c_str(), &named) == 0 && ::fstat(Descriptor(), &opened) == 0 &&
        named.st_dev == opened.st_dev && named.st_ino == opened.st_ino) {
        ::unlink(m_pathToDelete.c_str());
    }
}

u32 FileObject::Wait(u32) noexcept {
    SetLastError(kErrorInvalidHandle);
    return kWaitFailed;
}

// A dynamic cast would cost as much as the rest of a short operation.
FileObject* FileObject::Of(CheckedObject* object) noexcept {
    const bool isFile = object != nullptr && typeid(*object) == typeid(FileObject);
    return isFile ? static_cast<FileObject*>(object) : nullptr;
}

FileReference::FileReference(HANDLE handle) noexcept
    : m_reference(handle), m_file(FileObject::Of(m_reference.Get())) {
    if (m_file == nullptr) [[unlikely]] {
        SetLastError(kErrorInvalidHandle);
    }
}

HANDLE NewFileHandle(OwnedDescriptor file, u32 access, bool isPipe) noexcept {
    auto* const object = new (std::nothrow) FileObject(std::move(file), access, isPipe);
    if (object == nullptr) {
        SetLastError(kErrorOutOfMemory);
        return reinterpret_cast<HANDLE>(-1);
    }
    return NewCheckedHandle(object);
}

}  // namespace platform

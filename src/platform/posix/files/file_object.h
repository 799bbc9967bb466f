// What stands behind the handle of a file or of a pipe's end.
#ifndef QX_PLATFORM_POSIX_FILES_FILE_OBJECT_H
#define QX_PLATFORM_POSIX_FILES_FILE_OBJECT_H

#include <sys/types.h>

#include <string>

#include "../checked_handles.h"
#include "../descriptors.h"
#include "file_locks.h"
#include "platform/handles.h"

namespace platform {

class FileObject final : public CheckedObject {
  public:
    // `access` is of FileAccess.
    FileObject(OwnedDescriptor file, u32 access, bool isPipe) noexcept
        : m_file(std::move(file)), m_access(access), m_isPipe(isPipe) {}
    ~FileObject() override;

    // Null if it is none.
    static FileObject* Of(CheckedObject* object) noexcept;

    int Descriptor() const noexcept { return m_file.Get(); }
    bool IsPipe() const noexcept { return m_isPipe; }
    bool MayRead() const noexcept;
    bool MayWrite() const noexcept;
    FileLocks& Locks() noexcept { return m_locks; }

    // The file goes with the handle, if it still has that name then.
    void DeleteOnClose(std::string path) noexcept { m_pathToDelete = std::move(path); }

    // No file can be waited for.
    u32 Wait(u32 milliseconds) noexcept override;

  private:
    void DeleteFile() const noexcept;

    OwnedDescriptor m_file;
    const u32 m_access;
    const bool m_isPipe;
    std::string m_pathToDelete;
    FileLocks m_locks;  // goes before the descriptor
};

// The file behind a handle for the length of an operation. Null, with 6 as last error, if it is
// none.
class FileReference {
  public:
    explicit FileReference(HANDLE handle) noexcept;

    explicit operator bool() const noexcept { return m_file != nullptr; }
    FileObject* operator->() const noexcept { return m_file; }

  private:
    const CheckedReference m_reference;
    FileObject* m_file;
};

// All ones, with 14 as last error, without memory.
HANDLE NewFileHandle(OwnedDescriptor file, u32 access, bool isPipe) noexcept;

}  // namespace platform

#endif

#include <fcntl.h>

#include "../cancellation.h"
#include "../files/file_error.h"
#include "../files/file_object.h"
#include "platform/files.h"
#include "platform/processes.h"

namespace platform {
namespace {

const HANDLE kNoFile = reinterpret_cast<HANDLE>(-1);

}  // namespace

bool CreatePipe(HANDLE* read, HANDLE* write, const SECURITY_ATTRIBUTES*, u32) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    int ends[2] = {-1, -1};
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        return FailByErrno();
    }
    OwnedDescriptor readEnd(AboveStandardStreams(ends[0]));
    OwnedDescriptor writeEnd(AboveStandardStreams(ends[1]));
    if (!readEnd || !writeEnd) {
        return FailWith(kErrorTooManyOpenFiles);
    }
    *read = NewFileHandle(std::move(readEnd), kGenericRead, true);
    if (*read == kNoFile) {
        return false;
    }
    *write = NewFileHandle(std::move(writeEnd), kGenericWrite, true);
    if (*write == kNoFile) {
        CloseHandle(*read);
        return FailWith(kErrorOutOfMemory);
    }
    return true;
}

bool SetHandleInformation(HANDLE handle, u32, u32 flags) noexcept {
    const ErrnoKeeper keepErrno;
    const FileReference file(handle);
    if (!file) {
        return false;
    }
    const bool isInherited = (flags & kHandleFlagInherit) != 0;
    ::fcntl(file->Descriptor(), F_SETFD, isInherited ? 0 : FD_CLOEXEC);
    return true;
}

}  // namespace platform

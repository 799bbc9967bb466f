// Opening files. What is not allowed is found out before anything is cut: the descriptor is opened
// without truncation, looked at, and cut then.
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "../cancellation.h"
#include "file_error.h"
#include "file_object.h"
#include "file_path.h"
#include "platform/files.h"

namespace platform {
namespace {

constexpr mode_t kWriteBits = 0222;
constexpr mode_t kReadOnlyMode = 0444;
constexpr mode_t kOrdinaryMode = 0666;
const HANDLE kNoFile = reinterpret_cast<HANDLE>(-1);

struct OpenRequest {
    const char* m_path;
    u32 m_access;
    u32 m_disposition;
    u32 m_attributes;

    bool Truncates() const noexcept {
        return m_disposition == kCreateAlways || m_disposition == kTruncateExisting;
    }
    bool MayCreate() const noexcept {
        return m_disposition != kOpenExisting && m_disposition != kTruncateExisting;
    }
    bool TellsExistence() const noexcept {
        return m_disposition == kCreateAlways || m_disposition == kOpenAlways;
    }
    bool Writes() const noexcept { return (m_access & kGenericWrite) != 0 || Truncates(); }
    mode_t Mode() const noexcept {
        return (m_attributes & kAttributeReadOnly) != 0 ? kReadOnlyMode : kOrdinaryMode;
    }
    int Flags() const noexcept {
        const bool reads = (m_access & kGenericRead) != 0;
        const int access = !Writes() ? O_RDONLY : reads ? O_RDWR : O_WRONLY;
        return access | O_NOCTTY | ((m_attributes & kFlagWriteThrough) != 0 ? O_DSYNC : 0);
    }
};

bool IsValid(const OpenRequest& request) noexcept {
    return request.m_disposition >= kCreateNew && request.m_disposition <= kTruncateExisting &&
           (request.m_disposition != kTruncateExisting || (request.m_access & kGenericWrite) != 0);
}

struct Opened {
    OwnedDescriptor m_file;
    bool m_existed = false;
};

OwnedDescriptor Create(const OpenRequest& request, int exclusive) noexcept {
    return OpenDescriptor(request.m_path, request.Flags() | O_CREAT | exclusive, request.Mode());
}

// Whether a file was there is known only if no opening may do both. A file that comes or goes
// between the two is met in the next round; a link that leads nowhere is met in each, and followed
// at last.
Opened OpenOrCreate(const OpenRequest& request) noexcept {
    constexpr int kRounds = 16;
    if (request.m_disposition == kCreateNew) {
        return {Create(request, O_EXCL), false};
    }
    for (int round = 0; round < kRounds; ++round) {
        Opened opened = {OpenDescriptor(request.m_path, request.Flags()), true};
        if (opened.m_file || errno != ENOENT || !request.MayCreate()) {
            return opened;
        }
        Opened created = {Create(request, O_EXCL), false};
        if (created.m_file || errno != EEXIST) {
            return created;
        }
    }
    return {Create(request, 0), false};
}

// The administrator is refused what the attribute refuses others.
u32 LookAt(const OpenRequest& request, const struct stat& status) noexcept {
    if (S_ISDIR(status.st_mode)) {
        return kErrorAccessDenied;
    }
    const bool isReadOnly = S_ISREG(status.st_mode) && (status.st_mode & kWriteBits) == 0;
    return request.Writes() && isReadOnly ? kErrorAccessDenied : kErrorSuccess;
}

u32 PrepareExisting(const OpenRequest& request, int file, const struct stat& status) noexcept {
    if (const u32 error = LookAt(request, status)) {
        return error;
    }
    if (request.Truncates() && S_ISREG(status.st_mode) && ::ftruncate(file, 0) != 0) {
        return FileErrorFromErrno(errno);
    }
    const bool becomesReadOnly =
        request.m_disposition == kCreateAlways && request.Mode() == kReadOnlyMode;
    if (becomesReadOnly && ::fchmod(file, status.st_mode & 07777 & ~kWriteBits) != 0) {
        return FileErrorFromErrno(errno);
    }
    return kErrorSuccess;
}

u32 OpenError(const OpenRequest& request) noexcept {
    const int error = errno;
    return error == EEXIST && request.m_disposition == kCreateNew ? u32{kErrorFileExists}
                                                                  : FileErrorFromErrno(error);
}

// A path relative to the current directory names the same file when that changes.
std::string AbsolutePath(const char* path) {
    if (*path == '/') {
        return path;
    }
    char* const current = ::getcwd(nullptr, 0);
    const std::string base = current != nullptr ? current : ".";
    std::free(current);
    return base + '/' + path;
}

// A failure, with its number, if the file cannot be had as it is asked for.
u32 OpenAndPrepare(const OpenRequest& request, Opened* opened, bool* isPipe) noexcept {
    *opened = OpenOrCreate(request);
    struct stat status;
    if (!opened->m_file) {
        return OpenError(request);
    }
    if (::fstat(opened->m_file.Get(), &status) != 0) {
        return FileErrorFromErrno(errno);
    }
    *isPipe = S_ISFIFO(status.st_mode);
    return opened->m_existed ? PrepareExisting(request, opened->m_file.Get(), status)
                             : u32{kErrorSuccess};
}

HANDLE Open(const OpenRequest& request) {
    const bool deletes = (request.m_attributes & kFlagDeleteOnClose) != 0;
    std::string toDelete = deletes ? AbsolutePath(request.m_path) : std::string();
    Opened opened;
    bool isPipe = false;
    if (const u32 error = OpenAndPrepare(request, &opened, &isPipe)) {
        SetLastError(error);
        return kNoFile;
    }
    const HANDLE handle = NewFileHandle(std::move(opened.m_file), request.m_access, isPipe);
    if (handle == kNoFile) {
        return kNoFile;
    }
    if (deletes) {
        FileReference(handle)->DeleteOnClose(std::move(toDelete));
    }
    if (request.TellsExistence()) {
        SetLastError(opened.m_existed ? kErrorAlreadyExists : kErrorSuccess);
    }
    return handle;
}

}  // namespace

HANDLE CreateFileW(const char16_t* path, u32 access, u32, u32 disposition,
                   u32 attributes) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    const FilePath narrow(path);
    const OpenRequest request = {narrow.Text(), access, disposition, attributes};
    if (!narrow.IsValid()) {
        return kNoFile;
    }
    if (!IsValid(request)) {
        FailWith(kErrorInvalidParameter);
        return kNoFile;
    }
    try {
        return Open(request);
    } catch (const std::bad_alloc&) {
        FailWith(kErrorOutOfMemory);
        return kNoFile;
    }
}

}  // namespace platform

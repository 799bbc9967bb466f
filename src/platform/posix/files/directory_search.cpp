// Searches of directories.
#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <typeinfo>

#include "../cancellation.h"
#include "../checked_handles.h"
#include "../descriptors.h"
#include "file_error.h"
#include "file_path.h"
#include "platform/files.h"

namespace platform {
namespace {

constexpr mode_t kWriteBits = 0222;
constexpr u64 kStepsPerSecond = 10'000'000;
constexpr i64 kSecondsFrom1601To1970 = 11'644'473'600;

// `*` is any text, `?` any unit.
bool Matches(std::u16string_view pattern, std::u16string_view name) noexcept {
    while (!pattern.empty() && pattern.front() != u'*') {
        if (name.empty() || (pattern.front() != u'?' && pattern.front() != name.front())) {
            return false;
        }
        pattern.remove_prefix(1);
        name.remove_prefix(1);
    }
    if (pattern.empty()) {
        return name.empty();
    }
    pattern.remove_prefix(1);
    for (;; name.remove_prefix(1)) {
        if (pattern.empty() || Matches(pattern, name)) {
            return true;
        }
        if (name.empty()) {
            return false;
        }
    }
}

FILETIME FileTimeOf(const statx_timestamp& time) noexcept {
    const u64 steps = static_cast<u64>(time.tv_sec + kSecondsFrom1601To1970) * kStepsPerSecond +
                      time.tv_nsec / 100;
    return {static_cast<u32>(steps), static_cast<u32>(steps >> 32)};
}

// A file system that does not know when a file was made knows when it was last written.
void StoreStatus(const struct statx& status, FoundFile* found) noexcept {
    const bool isDirectory = S_ISDIR(status.stx_mode);
    const bool isReadOnly = !S_ISLNK(status.stx_mode) && (status.stx_mode & kWriteBits) == 0;
    const u64 size = isDirectory ? 0 : status.stx_size;
    found->dwFileAttributes =
        (isDirectory ? kAttributeDirectory : 0u) | (isReadOnly ? kAttributeReadOnly : 0u);
    found->ftCreationTime =
        FileTimeOf((status.stx_mask & STATX_BTIME) != 0 ? status.stx_btime : status.stx_mtime);
    found->ftLastAccessTime = FileTimeOf(status.stx_atime);
    found->ftLastWriteTime = FileTimeOf(status.stx_mtime);
    found->nFileSizeHigh = static_cast<u32>(size >> 32);
    found->nFileSizeLow = static_cast<u32>(size);
}

// A directory's entries as the kernel hands them over. First those of a small room: who asks only
// whether there is anything need not wait for as many as it can give at once.
class DirectoryEntries {
  public:
    explicit DirectoryEntries(OwnedDescriptor directory) noexcept
        : m_directory(std::move(directory)) {}

    int Descriptor() const noexcept { return m_directory.Get(); }

    // Null behind the last one, and with errno set where it was 0 on a failure.
    const dirent64* Next() noexcept {
        if (m_next == m_end && !Fill()) {
            return nullptr;
        }
        const auto* const entry = reinterpret_cast<const dirent64*>(m_next);
        m_next += entry->d_reclen;
        return entry;
    }

  private:
    static constexpr std::size_t kFirstRoom = 1024;

    // A directory that was removed has no entries any more.
    bool Fill() noexcept {
        const ssize_t size = ::getdents64(Descriptor(), m_buffer, m_room);
        if (size < 0 && errno == ENOENT) {
            errno = 0;
        }
        m_room = sizeof m_buffer;
        m_next = m_buffer;
        m_end = m_buffer + std::max<ssize_t>(size, 0);
        return size > 0;
    }

    const OwnedDescriptor m_directory;
    std::size_t m_room = kFirstRoom;
    const char* m_next = nullptr;
    const char* m_end = nullptr;
    alignas(dirent64) char m_buffer[32768];
};

class DirectorySearch final : public CheckedObject {
  public:
    DirectorySearch(OwnedDescriptor directory, std::u16string_view pattern)
        : m_entries(std::move(directory)), m_pattern(pattern), m_matchesAll(pattern == u"*") {}

    bool Next(FoundFile* found) noexcept {
        for (;;) {
            errno = 0;
            const dirent64* const entry = m_entries.Next();
            if (entry == nullptr) {
                return errno != 0 ? FailByErrno() : FailWith(kErrorNoMoreFiles);
            }
            if (StoreName(entry->d_name, found) && StoreEntry(*entry, found)) {
                return true;
            }
        }
    }

    u32 Wait(u32) noexcept override {
        SetLastError(kErrorInvalidHandle);
        return kWaitFailed;
    }

  private:
    // False for a name that the search is not about.
    bool StoreName(const char* name, FoundFile* found) const noexcept {
        const std::size_t length =
            UnitsOfPath(name, std::min<std::size_t>(std::strlen(name), 259), found->cFileName);
        found->cFileName[length] = 0;
        found->cAlternateFileName[0] = 0;
        return m_matchesAll || Matches(m_pattern, {found->cFileName, length});
    }

    // False for an entry that is gone. Of one that may not be looked at the kind is all that is
    // told.
    bool StoreEntry(const dirent64& entry, FoundFile* found) const noexcept {
        struct statx status;
        if (::statx(m_entries.Descriptor(), entry.d_name, AT_SYMLINK_NOFOLLOW | AT_STATX_DONT_SYNC,
                    STATX_BASIC_STATS | STATX_BTIME, &status) != 0) {
            if (errno == ENOENT) {
                return false;
            }
            status = {};
            status.stx_mode =
                static_cast<u16>(static_cast<mode_t>(DTTOIF(entry.d_type)) | kWriteBits);
        }
        StoreStatus(status, found);
        return true;
    }

    DirectoryEntries m_entries;
    const std::u16string m_pattern;
    const bool m_matchesAll;
};

class SearchReference {
  public:
    explicit SearchReference(HANDLE handle) noexcept
        : m_reference(handle), m_search(Of(m_reference.Get())) {}
    DirectorySearch* Get() const noexcept { return m_search; }

  private:
    // As FileObject::Of.
    static DirectorySearch* Of(CheckedObject* object) noexcept {
        const bool isSearch = object != nullptr && typeid(*object) == typeid(DirectorySearch);
        return isSearch ? static_cast<DirectorySearch*>(object) : nullptr;
    }

    const CheckedReference m_reference;
    DirectorySearch* const m_search;
};

struct SplitPattern {
    explicit SplitPattern(std::u16string_view pattern) {
        const std::size_t separator = pattern.find_last_of(u"/\\");
        const bool hasDirectory = separator != pattern.npos;
        directory = !hasDirectory ? u"." : separator == 0 ? u"/" : pattern.substr(0, separator);
        name = hasDirectory ? pattern.substr(separator + 1) : pattern;
    }

    std::u16string directory;
    std::u16string_view name;
};

// Something else of that name is told apart from a way that does not lead there.
u32 SearchError(const char* path, int error) noexcept {
    if (error == ENOTDIR) {
        return ::access(path, F_OK) == 0 ? kErrorDirectory : kErrorPathNotFound;
    }
    return error == ENOENT ? u32{kErrorPathNotFound} : FileErrorFromErrno(error);
}

// Null with the last error set.
std::unique_ptr<DirectorySearch> OpenSearch(const char16_t* pattern) {
    const SplitPattern split(pattern);
    const FilePath path(split.directory.c_str());
    if (!path.IsValid()) {
        return nullptr;
    }
    OwnedDescriptor directory = OpenDescriptor(path.Text(), O_RDONLY | O_DIRECTORY);
    if (!directory) {
        FailWith(SearchError(path.Text(), errno));
        return nullptr;
    }
    return std::make_unique<DirectorySearch>(std::move(directory), split.name);
}

HANDLE StartSearch(const char16_t* pattern, FoundFile* found) {
    std::unique_ptr<DirectorySearch> search = OpenSearch(pattern);
    if (search == nullptr) {
        return nullptr;
    }
    if (!search->Next(found)) {
        if (GetLastError() == kErrorNoMoreFiles) {
            SetLastError(kErrorFileNotFound);
        }
        return nullptr;
    }
    return NewCheckedHandle(search.release());
}

}  // namespace

HANDLE FindFirstFileExW(const char16_t* pattern, FoundFile* found) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    HANDLE search = nullptr;
    try {
        search = StartSearch(pattern, found);
    } catch (const std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
    }
    return search != nullptr ? search : reinterpret_cast<HANDLE>(-1);
}

// Neither reading a directory nor the status of an entry is a point of cancellation.
bool FindNextFileW(HANDLE search, FoundFile* found) noexcept {
    const ErrnoKeeper keepErrno;
    const SearchReference reference(search);
    return reference.Get() != nullptr ? reference.Get()->Next(found)
                                      : FailWith(kErrorInvalidHandle);
}

bool FindClose(HANDLE search) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    return CloseHandle(search);
}

}  // namespace platform

#include <qxcore/file.h>
#include <qxcore/string.h>

#include <cstddef>
#include <iterator>
#include <memory>
#include <new>
#include <string>

#include "file/entry_times.h"
#include "platform/errors.h"
#include "platform/files.h"

static_assert(sizeof(QXDirEntry) == 584);
static_assert(offsetof(QXDirEntry, shortName) == 520 && offsetof(QXDirEntry, mode) == 548);
static_assert(offsetof(QXDirEntry, sizeHigh) == 552 && offsetof(QXDirEntry, sizeLow) == 556);
static_assert(offsetof(QXDirEntry, createTime) == 560 && offsetof(QXDirEntry, writeTime) == 576);

namespace {

constexpr u32 kReadableByAll = 0444;
constexpr u32 kWritableByAll = 0222;
constexpr u32 kDirectoryType = 040000;

struct DirectoryListing {
    std::u16string m_pattern;
    platform::HANDLE m_find = QX_INVALID_HANDLE;
    EntryTimes m_times;
};

std::u16string PatternOf(std::u16string path) {
    if (!path.empty() && path.back() == u':') {
        return path + u"*";
    }
    path.erase(path.find_last_not_of(u"/\\") + 1);
    return path + u"\\*";
}

// The first step finds the first entry, each further one the next.
bool Step(DirectoryListing* listing, platform::FoundFile* found) {
    if (listing->m_find != QX_INVALID_HANDLE) {
        return platform::FindNextFileW(listing->m_find, found);
    }
    listing->m_find = platform::FindFirstFileExW(listing->m_pattern.c_str(), found);
    return listing->m_find != QX_INVALID_HANDLE;
}

u32 ModeOf(u32 attributes) {
    const bool isReadOnly = (attributes & platform::kAttributeReadOnly) != 0;
    const bool isDirectory = (attributes & platform::kAttributeDirectory) != 0;
    return kReadableByAll | (isReadOnly ? 0 : kWritableByAll) | (isDirectory ? kDirectoryType : 0);
}

void StoreEntry(const platform::FoundFile& found, EntryTimes& times, QXDirEntry* entry) {
    QXStrNCpyW(entry->name, found.cFileName, std::size(entry->name));
    QXStrNCpyW(entry->shortName, found.cAlternateFileName, std::size(entry->shortName));
    entry->sizeHigh = found.nFileSizeHigh;
    entry->sizeLow = found.nFileSizeLow;
    entry->mode = ModeOf(found.dwFileAttributes);
    times.Refresh();
    entry->createTime = times.SecondsOf(found.ftCreationTime);
    entry->accessTime = times.SecondsOf(found.ftLastAccessTime);
    entry->writeTime = times.SecondsOf(found.ftLastWriteTime);
}

// Looks whether there is anything to list, and keeps nothing of it.
bool Probe(const std::u16string& pattern) {
    platform::FoundFile found;
    const platform::HANDLE probe = platform::FindFirstFileExW(pattern.c_str(), &found);
    return probe != QX_INVALID_HANDLE && (platform::FindClose(probe), true);
}

QXResult OpenListing(const wchar* path, QXHandle* directory) {
    auto listing = std::make_unique<DirectoryListing>();
    listing->m_pattern = PatternOf(path);
    if (!Probe(listing->m_pattern)) {
        return QXResultFromNative(platform::GetLastError());
    }
    *directory = listing.release();
    return QX_S_OK;
}

}  // namespace

QXResult QXDirOpen(const wchar* path, QXHandle* directory) {
    *directory = QX_INVALID_HANDLE;
    try {
        return OpenListing(path, directory);
    } catch (const std::bad_alloc&) {
        return QX_E_OUTOFMEMORY;
    }
}

QXResult QXDirRead(QXHandle directory, QXDirEntry* entry, uint32_t) {
    auto* const listing = static_cast<DirectoryListing*>(directory);
    platform::FoundFile found;
    if (!Step(listing, &found)) {
        return QXResultFromNative(platform::GetLastError());
    }
    StoreEntry(found, listing->m_times, entry);
    return QX_S_OK;
}

QXResult QXDirClose(QXHandle directory) {
    const std::unique_ptr<DirectoryListing> listing(static_cast<DirectoryListing*>(directory));
    if (listing->m_find != QX_INVALID_HANDLE) {
        platform::FindClose(listing->m_find);
    }
    return QX_S_OK;
}

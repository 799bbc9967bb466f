#ifndef QX_PLATFORM_WINDOWS_FILES_NATIVE_H
#define QX_PLATFORM_WINDOWS_FILES_NATIVE_H

#include <algorithm>
#include <iterator>

#include "system_headers.h"

namespace platform {

struct FoundFile;

inline HANDLE CreateFileW(const char16_t* path, u32 access, u32 share, u32 disposition,
                          u32 attributes) noexcept {
    return ::CreateFileW(Native(path), access, share, nullptr, disposition, attributes, nullptr);
}

inline bool ReadFile(HANDLE file, void* buffer, u32 count, u32* done) noexcept {
    return ::ReadFile(file, buffer, count, Native(done), nullptr) != 0;
}

inline bool WriteFile(HANDLE file, const void* buffer, u32 count, u32* done) noexcept {
    return ::WriteFile(file, buffer, count, Native(done), nullptr) != 0;
}

inline u32 SetFilePointer(HANDLE file, i32 distance, u32 origin) noexcept {
    return ::SetFilePointer(file, distance, nullptr, origin);
}

inline bool SetFilePointerEx(HANDLE file, i64 distance, u64* position, u32 origin) noexcept {
    LARGE_INTEGER by;
    LARGE_INTEGER reached = {};
    by.QuadPart = distance;
    const bool moved = ::SetFilePointerEx(file, by, &reached, origin) != 0;
    *position = static_cast<u64>(reached.QuadPart);
    return moved;
}

inline bool FlushFileBuffers(HANDLE file) noexcept {
    return ::FlushFileBuffers(file) != 0;
}

inline bool GetFileSizeEx(HANDLE file, u64* size) noexcept {
    LARGE_INTEGER bytes = {};
    const bool known = ::GetFileSizeEx(file, &bytes) != 0;
    *size = static_cast<u64>(bytes.QuadPart);
    return known;
}

inline OVERLAPPED PlaceOf(u32 offset) noexcept {
    OVERLAPPED place = {};
    place.Offset = offset;
    return place;
}

inline bool LockFileEx(HANDLE file, u32 flags, u32 length, u32 offset) noexcept {
    OVERLAPPED place = PlaceOf(offset);
    return ::LockFileEx(file, flags, 0, length, 0, &place) != 0;
}

inline bool LockFile(HANDLE file, u32 offset, u32 length) noexcept {
    return ::LockFile(file, offset, 0, length, 0) != 0;
}

inline bool UnlockFileEx(HANDLE file, u32 length, u32 offset) noexcept {
    OVERLAPPED place = PlaceOf(offset);
    return ::UnlockFileEx(file, 0, length, 0, &place) != 0;
}

inline bool UnlockFile(HANDLE file, u32 offset, u32 length) noexcept {
    return ::UnlockFile(file, offset, 0, length, 0) != 0;
}

inline bool DeleteFileW(const char16_t* path) noexcept {
    return ::DeleteFileW(Native(path)) != 0;
}

inline bool CreateDirectoryW(const char16_t* path) noexcept {
    return ::CreateDirectoryW(Native(path), nullptr) != 0;
}

inline bool RemoveDirectoryW(const char16_t* path) noexcept {
    return ::RemoveDirectoryW(Native(path)) != 0;
}

template <typename Found>
bool StoreFound(bool there, const WIN32_FIND_DATAW& entry, Found* found) noexcept {
    if (there) {
        found->dwFileAttributes = entry.dwFileAttributes;
        found->ftCreationTime = entry.ftCreationTime;
        found->ftLastAccessTime = entry.ftLastAccessTime;
        found->ftLastWriteTime = entry.ftLastWriteTime;
        found->nFileSizeHigh = entry.nFileSizeHigh;
        found->nFileSizeLow = entry.nFileSizeLow;
        std::copy(std::begin(entry.cFileName), std::end(entry.cFileName), found->cFileName);
        std::copy(std::begin(entry.cAlternateFileName), std::end(entry.cAlternateFileName),
                  found->cAlternateFileName);
    }
    return there;
}

inline HANDLE FindFirstFileExW(const char16_t* pattern, FoundFile* found) noexcept {
    WIN32_FIND_DATAW entry;
    const HANDLE search = ::FindFirstFileExW(Native(pattern), FindExInfoBasic, &entry,
                                             FindExSearchNameMatch, nullptr, 0);
    StoreFound(search != INVALID_HANDLE_VALUE, entry, found);
    return search;
}

inline bool FindNextFileW(HANDLE search, FoundFile* found) noexcept {
    WIN32_FIND_DATAW entry;
    return StoreFound(::FindNextFileW(search, &entry) != 0, entry, found);
}

inline bool FindClose(HANDLE search) noexcept {
    return ::FindClose(search) != 0;
}

inline u32 GetFullPathNameW(const char16_t* path, u32 capacity, char16_t* buffer) noexcept {
    return ::GetFullPathNameW(Native(path), capacity, Native(buffer), nullptr);
}

inline u32 GetTempPathW(u32 capacity, char16_t* buffer) noexcept {
    return ::GetTempPathW(capacity, Native(buffer));
}

inline u32 GetTempFileNameW(const char16_t* directory, const char16_t* prefix,
                            char16_t* name) noexcept {
    return ::GetTempFileNameW(Native(directory), Native(prefix), 0, Native(name));
}

inline bool FileTimeToLocalFileTime(const FILETIME* time, FILETIME* local) noexcept {
    return ::FileTimeToLocalFileTime(time, local) != 0;
}

inline bool FileTimeToSystemTime(const FILETIME* time, SYSTEMTIME* record) noexcept {
    return ::FileTimeToSystemTime(time, record) != 0;
}

}  // namespace platform

#endif

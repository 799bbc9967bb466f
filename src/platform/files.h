// Files and directories.
#ifndef QX_PLATFORM_FILES_H
#define QX_PLATFORM_FILES_H

#include <files_native.h>

#include "platform/calendar.h"
#include "platform/clocks.h"
#include "platform/handles.h"
#include "platform/types.h"

namespace platform {

// Paths are terminated 16-bit text; `\` and `/` both separate. On the posix side a path is UTF-8 on
// disk. U+DC80 to U+DCFF, which stand alone in no well-formed text, are bytes that are no UTF-8,
// and U+DC5C is a `\` in a name, so that every name that a search shows can be used. A path that no
// file can have is 123.
//
// All of these may block on the disk; the thread is not cancelled meanwhile, and signals do not
// interrupt anything. A failure is false, null or as said, with the last error: 2 or 3 for what is
// not there, 5 for what is not allowed, 4 without descriptors, 112 on a full disk, and what stands
// at the operation. A handle that is closed or no file's is 6.

enum FileAccess : u32 {
    kDelete = 0x00010000,        // DELETE
    kGenericWrite = 0x40000000,  // GENERIC_WRITE
    kGenericRead = 0x80000000,   // GENERIC_READ
};

enum FileShare : u32 {
    kShareRead = 1,   // FILE_SHARE_READ
    kShareWrite = 2,  // FILE_SHARE_WRITE
};

enum FileDisposition : u32 {
    kCreateNew = 1,         // CREATE_NEW
    kCreateAlways = 2,      // CREATE_ALWAYS
    kOpenExisting = 3,      // OPEN_EXISTING
    kOpenAlways = 4,        // OPEN_ALWAYS
    kTruncateExisting = 5,  // TRUNCATE_EXISTING
};

enum FileAttribute : u32 {
    kAttributeReadOnly = 0x00000001,   // FILE_ATTRIBUTE_READONLY
    kAttributeDirectory = 0x00000010,  // FILE_ATTRIBUTE_DIRECTORY
    kAttributeNormal = 0x00000080,     // FILE_ATTRIBUTE_NORMAL
    kAttributeTemporary = 0x00000100,  // FILE_ATTRIBUTE_TEMPORARY
    kFlagDeleteOnClose = 0x04000000,   // FILE_FLAG_DELETE_ON_CLOSE
    kFlagWriteThrough = 0x80000000,    // FILE_FLAG_WRITE_THROUGH
};

// All ones on failure: 80 for a new file that is there, 87 for another disposition, and for a
// truncation without write access; 5 for a directory, and for writing to what has the read-only
// attribute, whoever asks. kCreateAlways and kOpenAlways set the last error to 183 if the file was
// there and to 0 otherwise. kFlagDeleteOnClose removes the file when the handle closes.
HANDLE CreateFileW(const char16_t* path, u32 access, u32 share, u32 disposition,
                   u32 attributes) noexcept;

// At most `count` bytes from the handle's position; *done of them, also 0 at the end of a file.
// 109 at the end of a pipe, 5 without read access.
bool ReadFile(HANDLE file, void* buffer, u32 count, u32* done) noexcept;

// 5 without write access; 232 for a pipe that nobody reads.
bool WriteFile(HANDLE file, const void* buffer, u32 count, u32* done) noexcept;

inline constexpr u32 kInvalidFilePointer = 0xFFFFFFFF;  // INVALID_SET_FILE_POINTER

// Moves the handle's position by `distance` from 0 the start, 1 itself, 2 the end. Returns it, or
// all ones on a failure, which leaves it: 87 for another origin or more than 32 bits, 131 for a
// place before the start. All ones as a position set the last error to 0.
u32 SetFilePointer(HANDLE file, i32 distance, u32 origin) noexcept;
bool SetFilePointerEx(HANDLE file, i64 distance, u64* position, u32 origin) noexcept;

// 5 without write access.
bool FlushFileBuffers(HANDLE file) noexcept;

bool GetFileSizeEx(HANDLE file, u64* size) noexcept;

enum LockFlags : u32 {
    kLockFailImmediately = 1,  // LOCKFILE_FAIL_IMMEDIATELY
    kLockExclusive = 2,        // LOCKFILE_EXCLUSIVE_LOCK
};

// Locks bytes of the file for this handle, beyond its end too; no bytes are always free. Waits for
// others, unless told to fail with 33. The posix side refuses bytes that the handle itself has
// locked with 33 unless both locks are shared, also where it was to wait: it would wait for itself.
bool LockFileEx(HANDLE file, u32 flags, u32 length, u32 offset) noexcept;
bool LockFile(HANDLE file, u32 offset, u32 length) noexcept;

// Just the bytes of one lock; 158 for others.
bool UnlockFileEx(HANDLE file, u32 length, u32 offset) noexcept;
bool UnlockFile(HANDLE file, u32 offset, u32 length) noexcept;

// 5 for a directory and for what has the read-only attribute.
bool DeleteFileW(const char16_t* path) noexcept;

// 183 if something of that name is there, 3 if the place is not.
bool CreateDirectoryW(const char16_t* path) noexcept;

// 145 if there is something in it, 267 for what is no directory.
bool RemoveDirectoryW(const char16_t* path) noexcept;

struct FoundFile {
    u32 dwFileAttributes;
    FILETIME ftCreationTime;
    FILETIME ftLastAccessTime;
    FILETIME ftLastWriteTime;
    u32 nFileSizeHigh;
    u32 nFileSizeLow;
    char16_t cFileName[260];
    char16_t cAlternateFileName[14];  // empty
};

// Searches a directory for the names that the last part of `pattern` stands for: `*` is any text,
// `?` any unit. Links are not followed. FindNextFileW fails with 18 behind the last entry; the
// posix side passes over entries that went meanwhile. A search belongs to one thread at a time.
// FindFirstFileExW gives all ones on failure.
HANDLE FindFirstFileExW(const char16_t* pattern, FoundFile* found) noexcept;
bool FindNextFileW(HANDLE search, FoundFile* found) noexcept;
bool FindClose(HANDLE search) noexcept;

// Makes a path whole by its letters alone: nothing need be there. Returns the units without the
// terminator; if there is no room for them, the units that are needed with it, and nothing is
// written. 0 with 123 for an empty path.
u32 GetFullPathNameW(const char16_t* path, u32 capacity, char16_t* buffer) noexcept;

// The directory for temporary files with a separator at its end. As GetFullPathNameW.
u32 GetTempPathW(u32 capacity, char16_t* buffer) noexcept;

// Makes an empty file of a name that nobody has, which begins with `prefix`, in that directory.
// `name` has room for 264 units. 0 on failure.
u32 GetTempFileNameW(const char16_t* directory, const char16_t* prefix, char16_t* name) noexcept;

// By the difference that is in force now, whatever the date.
bool FileTimeToLocalFileTime(const FILETIME* time, FILETIME* local) noexcept;
bool FileTimeToSystemTime(const FILETIME* time, SYSTEMTIME* record) noexcept;

}  // namespace platform

#endif

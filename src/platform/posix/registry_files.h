// The files of a store as they are at their places: the database, its log, and the log's index,
// which is mapped into every process that uses the store. Anybody with the right may remove,
// replace or cut them at any time.
#ifndef QX_PLATFORM_POSIX_REGISTRY_FILES_H
#define QX_PLATFORM_POSIX_REGISTRY_FILES_H

#include <sys/types.h>

#include <string>

#include "descriptors.h"
#include "platform/types.h"

namespace platform {

struct FileState {
    dev_t m_device = 0;
    ino_t m_inode = 0;  // 0 if there is no file
    i64 m_size = 0;
    i64 m_written = 0;  // when, in nanoseconds

    bool operator==(const FileState&) const = default;
    bool IsThere() const noexcept { return m_inode != 0; }
    bool IsSameFile(const FileState& other) const noexcept {
        return m_device == other.m_device && m_inode == other.m_inode;
    }
};

struct StoreFiles {
    FileState m_database;
    FileState m_log;
    FileState m_index;
};

// The database's real path and the names that SQLite derives from it.
struct StorePaths {
    std::string m_directory;
    std::string m_database;
    std::string m_log;
    std::string m_index;
    std::string m_journal;
};

// The longest path of a database that SQLite takes, in bytes.
inline constexpr std::size_t kMaxDatabasePath = 504;

// The operations below throw StoreFailure.

// The paths for a database that exists, links resolved.
StorePaths PathsOf(const std::string& database);

// What is there now. 1009 if anything but a regular file is at one of the places: SQLite would wait
// at a pipe, and follow a link to what is not its own.
FileState LookAt(const std::string& path);
StoreFiles LookAt(const StorePaths& paths);

// Gives the side files the database's own mode. They take the mode that it has when they are made,
// which, if another process made it, may still be a narrower one.
void SetSideFileModes(const StorePaths& paths, mode_t mode) noexcept;

// A file that is looked at whatever happens to its name. The descriptor only names it: closing that
// does not touch the locks that the process holds on the file, as closing any other would.
class FileWatch {
  public:
    FileWatch() noexcept = default;
    // A file that is missing is not whole.
    explicit FileWatch(const std::string& path);

    // False once the file has lost its name or has become shorter than it was.
    bool IsWhole() noexcept;
    // False once it has lost its name or is shorter than that.
    bool Holds(i64 size) const noexcept;

  private:
    // Less than nothing for a file without a name.
    i64 Size() const noexcept;

    OwnedDescriptor m_descriptor;
    i64 m_size = 0;
};

// Tells that no name in a directory has come, gone or changed since a look at them: each of that
// changes the time of the directory's own last change. Times come in steps, so a directory that
// changed of late tells nothing. Nor does it tell of a change to the directories above it.
class DirectoryWatch {
  public:
    DirectoryWatch() noexcept = default;
    explicit DirectoryWatch(const std::string& path);

    // To be called ahead of the look.
    void Restart() noexcept;
    bool IsUnchanged() const noexcept;

  private:
    static constexpr i64 kUnknown = -1;

    i64 Changed() const noexcept;

    OwnedDescriptor m_descriptor;
    i64 m_changed = kUnknown;  // in nanoseconds
};

}  // namespace platform

#endif

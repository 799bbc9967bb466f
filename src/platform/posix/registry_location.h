// Where the files of the registry are, and how they come into being.
#ifndef QX_PLATFORM_POSIX_REGISTRY_LOCATION_H
#define QX_PLATFORM_POSIX_REGISTRY_LOCATION_H

#include <sys/types.h>

#include <string>

#include "platform/types.h"

namespace platform {

// The user's own trees, and those that all users share.
enum class StoreNumber : u8 { kUser, kMachine };
inline constexpr std::size_t kStoreCount = 2;

struct StoreLocation {
    std::string m_parent;     // may be made on the way to the directory; empty if it may not
    std::string m_directory;  // empty if there is no place for this user
    std::string m_file;       // the whole path of the file
    bool m_mayMakeDirectory;
    mode_t m_directoryMode;
    mode_t m_fileMode;
};

// Reads the environment:
//   W64QXCORE6_REGISTRY  a directory that holds both files; it is never made
//   XDG_CONFIG_HOME      if absolute, the user's directory is w64qxcore6 in it
//   HOME                 if absolute, .config/w64qxcore6 in it, or else in the password entry's
// None of them counts in a program that runs with more rights than its caller. Throws StoreFailure
// if the place cannot be told, and 206 if its path is too long for the database.
StoreLocation LocateStore(StoreNumber number);

// What is at the place of the file. A native error number if that cannot be told.
enum class StoreFile { kMissing, kPresent, kForeign };
u32 ProbeStoreFile(const StoreLocation& location, StoreFile* found) noexcept;

// Makes an empty file, and its directory if that may be made. 0 also if it is there by now. The
// modes are the stated ones whatever the process's mask is.
u32 MakeStoreFile(const StoreLocation& location) noexcept;

}  // namespace platform

#endif

#include "registry_location.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>

#include "password_entry.h"
#include "platform/errors.h"
#include "registry_failure.h"
#include "registry_files.h"

namespace platform {
namespace {

constexpr char kName[] = "w64qxcore6";

struct Freer {
    void operator()(char* text) const noexcept { std::free(text); }
};

const char* Variable(const char* name) noexcept {
    const char* const value = ::secure_getenv(name);
    return value != nullptr && *value != 0 ? value : nullptr;
}

std::string Beneath(const std::string& directory, const char* name) {
    return directory.empty() ? directory : directory + "/" + name;
}

// Null unless it is an absolute path: what is relative would follow the current directory.
const char* AbsoluteVariable(const char* name) noexcept {
    const char* const value = Variable(name);
    return value != nullptr && *value == '/' ? value : nullptr;
}

// A directory that is named relative to the current one stays the same when that changes.
std::string Absolute(const std::string& path) {
    if (path.front() == '/') {
        return path;
    }
    const std::unique_ptr<char, Freer> current(::getcwd(nullptr, 0));
    if (current == nullptr) {
        throw StoreFailure{NativeErrorFromErrno(errno), false};
    }
    return Beneath(current.get(), path.c_str());
}

std::string PasswordEntryHome() {
    PasswordEntry entry;
    if (const int error = FindPasswordEntry(::geteuid(), &entry)) {
        throw StoreFailure{NativeErrorFromErrno(error), false};
    }
    return entry.m_home;
}

std::string ConfigurationHome() {
    if (const char* const configured = AbsoluteVariable("XDG_CONFIG_HOME")) {
        return configured;
    }
    const char* const home = AbsoluteVariable("HOME");
    return Beneath(home != nullptr ? home : PasswordEntryHome(), ".config");
}

u32 PathErrorNow() noexcept {
    return errno == ENOENT ? static_cast<u32>(kErrorPathNotFound) : NativeErrorFromErrno(errno);
}

// Success also if something is there already: what it is shows when the file is made in it.
bool MakeDirectory(const std::string& path, mode_t mode) noexcept {
    if (::mkdir(path.c_str(), mode) != 0) {
        return errno == EEXIST;
    }
    return ::chmod(path.c_str(), mode) == 0;
}

u32 MakeStoreDirectory(const StoreLocation& location) noexcept {
    if (!location.m_parent.empty() && !MakeDirectory(location.m_parent, location.m_directoryMode)) {
        return PathErrorNow();
    }
    return MakeDirectory(location.m_directory, location.m_directoryMode) ? 0 : PathErrorNow();
}

}  // namespace

StoreLocation LocateStore(StoreNumber number) {
    const bool user = number == StoreNumber::kUser;
    StoreLocation location{.m_parent = {},
                           .m_directory = {},
                           .m_file = {},
                           .m_mayMakeDirectory = false,
                           .m_directoryMode = user ? 0700u : 0755u,
                           .m_fileMode = user ? 0600u : 0644u};
    if (const char* const named = Variable("W64QXCORE6_REGISTRY")) {
        location.m_directory = Absolute(named);
    } else {
        location.m_parent = user ? ConfigurationHome() : "";
        location.m_directory = Beneath(user ? location.m_parent : "/var/lib", kName);
        location.m_mayMakeDirectory = true;
    }
    location.m_file = Beneath(location.m_directory, user ? "user.db" : "machine.db");
    if (location.m_file.size() > kMaxDatabasePath) {
        throw StoreFailure{kErrorFilenameExceedsRange, false};
    }
    return location;
}

u32 ProbeStoreFile(const StoreLocation& location, StoreFile* found) noexcept {
    struct stat status;
    *found = StoreFile::kMissing;
    if (location.m_file.empty()) {
        return kErrorSuccess;
    }
    if (::stat(location.m_file.c_str(), &status) == 0) {
        *found = S_ISREG(status.st_mode) ? StoreFile::kPresent : StoreFile::kForeign;
        return kErrorSuccess;
    }
    return errno == ENOENT || errno == ENOTDIR ? static_cast<u32>(kErrorSuccess)
                                               : NativeErrorFromErrno(errno);
}

u32 MakeStoreFile(const StoreLocation& location) noexcept {
    if (location.m_file.empty()) {
        return kErrorPathNotFound;
    }
    if (location.m_mayMakeDirectory) {
        if (const u32 error = MakeStoreDirectory(location)) {
            return error;
        }
    }
    const int file =
        ::open(location.m_file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, location.m_fileMode);
    if (file < 0) {
        return errno == EEXIST ? static_cast<u32>(kErrorSuccess) : PathErrorNow();
    }
    const u32 error = ::fchmod(file, location.m_fileMode) == 0 ? 0 : NativeErrorFromErrno(errno);
    ::close(file);
    return error;
}

}  // namespace platform

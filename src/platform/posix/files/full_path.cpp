// Paths that are made whole, and names for temporary files.
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

#include "../cancellation.h"
#include "../descriptors.h"
#include "file_error.h"
#include "file_path.h"
#include "platform/files.h"

namespace platform {
namespace {

constexpr char16_t kSeparators[] = u"/\\";

bool IsSeparator(char16_t unit) noexcept {
    return unit == u'/' || unit == u'\\';
}

std::u16string Units(std::string_view bytes) {
    std::u16string units(bytes.size(), u'\0');
    units.resize(UnitsOfPath(bytes.data(), bytes.size(), units.data()));
    return units;
}

// Empty if there is none any more.
std::u16string CurrentDirectory() {
    char* const current = ::getcwd(nullptr, 0);
    const std::string bytes = current != nullptr ? current : "";
    std::free(current);
    return Units(bytes);
}

void RemoveLastName(std::u16string& path) {
    const std::size_t separator = path.rfind(u'/');
    path.erase(separator != path.npos ? separator : 0);
}

void AppendName(std::u16string& path, std::u16string_view name) {
    if (name == u"..") {
        RemoveLastName(path);
    } else if (!name.empty() && name != u".") {
        path += u'/';
        path += name;
    }
}

// A separator at the end stays one.
std::u16string FullPath(std::u16string_view path) {
    std::u16string full = IsSeparator(path.front()) ? u"" : CurrentDirectory();
    if (full == u"/") {
        full.clear();
    }
    const bool endsInSeparator = IsSeparator(path.back());
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of(kSeparators), path.size());
        AppendName(full, path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    if (full.empty() || endsInSeparator) {
        full += u'/';
    }
    return full;
}

u32 Store(const std::u16string& text, u32 capacity, char16_t* buffer) noexcept {
    const u32 length = static_cast<u32>(text.size());
    if (length >= capacity) {
        return length + 1;
    }
    text.copy(buffer, length);
    buffer[length] = 0;
    return length;
}

// Of `make`, or 0 without memory.
template <typename Make>
u32 StoreMade(u32 capacity, char16_t* buffer, Make make) noexcept {
    const CancellationOff whole;
    const ErrnoKeeper keepErrno;
    try {
        return Store(make(), capacity, buffer);
    } catch (const std::bad_alloc&) {
        SetLastError(kErrorOutOfMemory);
        return 0;
    }
}

std::u16string TemporaryDirectory() {
    const char* const named = ::secure_getenv("TMPDIR");
    std::u16string directory = Units(named != nullptr && *named != '\0' ? named : "/tmp");
    if (!IsSeparator(directory.back())) {
        directory += u'/';
    }
    return directory;
}

// An empty file of its owner alone; its name, or an empty one with the last error set.
std::u16string MakeUniqueFile(const std::u16string& start) {
    const FilePath path(start.c_str());
    if (!path.IsValid()) {
        return {};
    }
    std::string name = std::string(path.Text()) + "XXXXXX.tmp";
    const OwnedDescriptor file(::mkostemps(name.data(), 4, O_CLOEXEC));
    if (!file) {
        FailByErrno();
        return {};
    }
    return Units(name);
}

}  // namespace

u32 GetFullPathNameW(const char16_t* path, u32 capacity, char16_t* buffer) noexcept {
    if (*path == 0) {
        SetLastError(kErrorInvalidName);
        return 0;
    }
    return StoreMade(capacity, buffer, [path] { return FullPath(path); });
}

u32 GetTempPathW(u32 capacity, char16_t* buffer) noexcept {
    return StoreMade(capacity, buffer, TemporaryDirectory);
}

u32 GetTempFileNameW(const char16_t* directory, const char16_t* prefix, char16_t* name) noexcept {
    constexpr u32 kCapacity = 264;
    return StoreMade(kCapacity, name,
                     [=] { return MakeUniqueFile(std::u16string(directory) + prefix); });
}

}  // namespace platform

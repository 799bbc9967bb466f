#include "files.h"

#include <fstream>

#include "failure.h"
#include "platform.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void Refuse(const fs::path& path, const char* why) {
    const std::u8string name = path.u8string();
    throw Failure(std::string(name.begin(), name.end()) + ": " + why);
}

bool Write(const fs::path& path, std::string_view bytes, bool isPrivate) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (isPrivate) {
        std::error_code ignored;
        fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write, ignored);
    }
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    out.close();
    return static_cast<bool>(out);
}

}  // namespace

fs::path PathOf(std::string_view argument) {
    return std::u8string(argument.begin(), argument.end());
}

fs::path DraftOf(const fs::path& path) {
    fs::path draft = path;
    return draft += ".part";
}

std::string ReadFile(const fs::path& path) {
    std::error_code ignored;
    std::ifstream in(path, std::ios::binary);
    if (!in || fs::is_directory(path, ignored)) {
        Refuse(path, "cannot be read");
    }
    std::string bytes{std::istreambuf_iterator<char>(in), {}};
    if (in.bad()) {
        Refuse(path, "cannot be read");
    }
    return bytes;
}

// What is there and is no regular file, such as a device, is written to as it is.
void WriteFile(const fs::path& path, std::string_view bytes, bool isPrivate) {
    std::error_code error;
    const fs::path target = fs::exists(path, error) ? fs::canonical(path, error) : path;
    if (fs::exists(target, error) && !fs::is_regular_file(target, error)) {
        if (fs::is_directory(target, error) || !Write(target, bytes, false)) {
            Refuse(path, "cannot be written");
        }
        return;
    }
    const fs::path draft = DraftOf(target);
    const bool isWritten = Write(draft, bytes, isPrivate) && FlushToDisk(draft);
    if (isWritten) {
        fs::rename(draft, target, error);
    }
    if (!isWritten || error) {
        fs::remove(draft, error);
        Refuse(path, "cannot be written");
    }
}

#include "password_entry.h"

#include <pwd.h>

#include <cerrno>
#include <vector>

namespace platform {
namespace {

constexpr std::size_t kLargestEntry = 1 << 20;  // bytes

// These numbers too say that there is no such user.
bool IsAbsence(int error) noexcept {
    return error == 0 || error == ENOENT || error == ESRCH;
}

std::string TextOf(const char* field) {
    return field != nullptr ? field : "";
}

}  // namespace

int FindPasswordEntry(uid_t user, PasswordEntry* entry) {
    std::vector<char> buffer(1024);
    passwd record;
    passwd* found = nullptr;
    int error = 0;
    do {
        error = ::getpwuid_r(user, &record, buffer.data(), buffer.size(), &found);
        if (error == ERANGE) {
            buffer.resize(2 * buffer.size());
        }
    } while (error == EINTR || (error == ERANGE && buffer.size() <= kLargestEntry));
    if (found != nullptr) {
        *entry = {TextOf(found->pw_name), TextOf(found->pw_dir)};
    }
    return found != nullptr || IsAbsence(error) ? 0 : error;
}

}  // namespace platform

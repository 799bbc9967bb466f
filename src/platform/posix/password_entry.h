// A user's entry in the password database.
#ifndef QX_PLATFORM_POSIX_PASSWORD_ENTRY_H
#define QX_PLATFORM_POSIX_PASSWORD_ENTRY_H

#include <sys/types.h>

#include <string>

namespace platform {

struct PasswordEntry {
    std::string m_name;
    std::string m_home;
};

// Leaves the fields empty if there is no such user. Returns 0, or the errno value of why that could
// not be found out. Throws std::bad_alloc; asks services outside the process, so it may block.
int FindPasswordEntry(uid_t user, PasswordEntry* entry);

}  // namespace platform

#endif

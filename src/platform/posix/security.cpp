#include "platform/security.h"

#include <cstdlib>
#include <cstring>

namespace platform {

bool AllocateAndInitializeSid(const u8* authority, u8 count, u32 first, PSID* identity) noexcept {
    SID head = {.Revision = 1, .SubAuthorityCount = count, .IdentifierAuthority = {}};
    std::memcpy(head.IdentifierAuthority, authority, sizeof head.IdentifierAuthority);
    auto* const memory =
        static_cast<u8*>(std::calloc(1, sizeof head + std::size_t{count} * sizeof first));
    if (memory == nullptr) {
        SetLastError(kErrorOutOfMemory);
        return false;
    }
    std::memcpy(memory, &head, sizeof head);
    std::memcpy(memory + sizeof head, &first, sizeof first);
    *identity = memory;
    return true;
}

u32 GetLengthSid(PSID identity) noexcept {
    const auto* const head = static_cast<const SID*>(identity);
    return static_cast<u32>(sizeof *head + head->SubAuthorityCount * sizeof(u32));
}

void FreeSid(PSID identity) noexcept {
    std::free(identity);
}

bool InitializeAcl(ACL* list, u32 size, u32 revision) noexcept {
    *list = {.AclRevision = static_cast<u8>(revision),
             .Sbz1 = 0,
             .AclSize = static_cast<u16>(size),
             .AceCount = 0,
             .Sbz2 = 0};
    return true;
}

// The list has no other entry.
bool AddAccessAllowedAce(ACL* list, u32, u32 mask, PSID identity) noexcept {
    const u32 length = GetLengthSid(identity);
    const ACCESS_ALLOWED_ACE head = {
        .AceType = 0,
        .AceFlags = 0,
        .AceSize = static_cast<u16>(sizeof head + length),
        .Mask = mask,
    };
    if (sizeof *list + head.AceSize > list->AclSize) {
        SetLastError(kErrorAllottedSpaceExceeded);
        return false;
    }
    u8* const entry = reinterpret_cast<u8*>(list + 1);
    std::memcpy(entry, &head, sizeof head);
    std::memcpy(entry + sizeof head, identity, length);
    list->AceCount = 1;
    return true;
}

}  // namespace platform

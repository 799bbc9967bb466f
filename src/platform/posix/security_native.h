// The absolute form of the descriptor. Nothing on this back end checks access by it.
#ifndef QX_PLATFORM_POSIX_SECURITY_NATIVE_H
#define QX_PLATFORM_POSIX_SECURITY_NATIVE_H

#include "platform/errors.h"

namespace platform {

using PSID = void*;

// An identity: its numbers follow.
struct SID {
    u8 Revision;
    u8 SubAuthorityCount;
    u8 IdentifierAuthority[6];
};
static_assert(sizeof(SID) == 8);

// An access list: its entries follow.
struct ACL {
    u8 AclRevision;
    u8 Sbz1;
    u16 AclSize;
    u16 AceCount;
    u16 Sbz2;
};
static_assert(sizeof(ACL) == 8);

// An entry: its identity follows.
struct ACCESS_ALLOWED_ACE {
    u8 AceType;
    u8 AceFlags;
    u16 AceSize;
    u32 Mask;
};
static_assert(sizeof(ACCESS_ALLOWED_ACE) == 8);

struct SECURITY_DESCRIPTOR {
    u8 Revision;
    u8 Sbz1;
    u16 Control;
    void* Owner;
    void* Group;
    ACL* Sacl;
    ACL* Dacl;
};
static_assert(sizeof(SECURITY_DESCRIPTOR) == 40);

struct SECURITY_ATTRIBUTES {
    u32 nLength;
    void* lpSecurityDescriptor;
    i32 bInheritHandle;
};
static_assert(sizeof(SECURITY_ATTRIBUTES) == 24);

inline constexpr u16 kDaclPresent = 0x4;
inline constexpr u16 kDaclDefaulted = 0x8;

inline bool InitializeSecurityDescriptor(SECURITY_DESCRIPTOR* descriptor, u32 revision) noexcept {
    if (revision != 1) {
        SetLastError(kErrorUnknownRevision);
        return false;
    }
    *descriptor = {.Revision = 1,
                   .Sbz1 = 0,
                   .Control = 0,
                   .Owner = nullptr,
                   .Group = nullptr,
                   .Sacl = nullptr,
                   .Dacl = nullptr};
    return true;
}

inline bool SetSecurityDescriptorDacl(SECURITY_DESCRIPTOR* descriptor, bool present, ACL* list,
                                      bool defaulted) noexcept {
    const u16 kept = static_cast<u16>(descriptor->Control & ~(kDaclPresent | kDaclDefaulted));
    const u16 flags = present ? (defaulted ? kDaclPresent | kDaclDefaulted : kDaclPresent) : 0;
    descriptor->Control = static_cast<u16>(kept | flags);
    descriptor->Dacl = present ? list : nullptr;
    return true;
}

}  // namespace platform

#endif

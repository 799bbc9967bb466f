// Security descriptors, as new objects of the platform are given them.
#ifndef QX_PLATFORM_SECURITY_H
#define QX_PLATFORM_SECURITY_H

#include <security_native.h>

#include "platform/types.h"

namespace platform {

// The back end defines SECURITY_DESCRIPTOR, ACL, SECURITY_ATTRIBUTES and the pointer PSID in the
// published layout. The operations fill the caller's memory, block nowhere and keep no pointer of
// their own.

inline constexpr u32 kSecurityDescriptorRevision = 1;  // SECURITY_DESCRIPTOR_REVISION

// An empty descriptor. `revision` is 1; any other fails with 1305.
bool InitializeSecurityDescriptor(SECURITY_DESCRIPTOR* descriptor, u32 revision) noexcept;

// Sets the access list. `present` false says that there is none, so that everybody has access.
bool SetSecurityDescriptorDacl(SECURITY_DESCRIPTOR* descriptor, bool present, ACL* list,
                               bool defaulted) noexcept;

// An identity; the caller frees it. `authority` has 6 bytes. False with 14.
bool AllocateAndInitializeSid(const u8* authority, u8 count, u32 first, PSID* identity) noexcept;
u32 GetLengthSid(PSID identity) noexcept;
void FreeSid(PSID identity) noexcept;

inline constexpr u32 kAclRevision = 2;  // ACL_REVISION

// An empty list in `size` bytes of the caller's. `revision` is 2.
bool InitializeAcl(ACL* list, u32 size, u32 revision) noexcept;

// Adds an entry that allows `mask` to the identity, which is copied. False with 1344 if the list
// has no room for it.
bool AddAccessAllowedAce(ACL* list, u32 revision, u32 mask, PSID identity) noexcept;

}  // namespace platform

#endif

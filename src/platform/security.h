// Security descriptors, as new objects of the platform are given them.
#ifndef QX_PLATFORM_SECURITY_H
#define QX_PLATFORM_SECURITY_H

#include <security_native.h>

#include "platform/types.h"

namespace platform {

// The back end defines SECURITY_DESCRIPTOR, ACL and SECURITY_ATTRIBUTES in the published layout.
// The operations fill the caller's memory, block nowhere and keep no pointer of their own.

inline constexpr u32 kSecurityDescriptorRevision = 1;

// An empty descriptor. `revision` is 1; any other fails with 1305.
bool InitializeSecurityDescriptor(SECURITY_DESCRIPTOR* descriptor, u32 revision) noexcept;

// Sets the access list. `present` false says that there is none, so that everybody has access.
bool SetSecurityDescriptorDacl(SECURITY_DESCRIPTOR* descriptor, bool present, ACL* list,
                               bool defaulted) noexcept;

}  // namespace platform

#endif

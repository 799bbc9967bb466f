#ifndef QX_PLATFORM_WINDOWS_SECURITY_NATIVE_H
#define QX_PLATFORM_WINDOWS_SECURITY_NATIVE_H

#include "system_headers.h"

namespace platform {

using ::ACL;
using ::PSID;
using ::SECURITY_ATTRIBUTES;
using ::SECURITY_DESCRIPTOR;

inline bool InitializeSecurityDescriptor(SECURITY_DESCRIPTOR* descriptor, u32 revision) noexcept {
    return ::InitializeSecurityDescriptor(descriptor, revision) != 0;
}

inline bool SetSecurityDescriptorDacl(SECURITY_DESCRIPTOR* descriptor, bool present, ACL* list,
                                      bool defaulted) noexcept {
    return ::SetSecurityDescriptorDacl(descriptor, present, list, defaulted) != 0;
}

inline bool AllocateAndInitializeSid(const u8* authority, u8 count, u32 first,
                                     PSID* identity) noexcept {
    SID_IDENTIFIER_AUTHORITY value;
    for (int index = 0; index < 6; ++index) {
        value.Value[index] = authority[index];
    }
    return ::AllocateAndInitializeSid(&value, count, first, 0, 0, 0, 0, 0, 0, 0, identity) != 0;
}

inline u32 GetLengthSid(PSID identity) noexcept {
    return ::GetLengthSid(identity);
}

inline void FreeSid(PSID identity) noexcept {
    ::FreeSid(identity);
}

inline bool InitializeAcl(ACL* list, u32 size, u32 revision) noexcept {
    return ::InitializeAcl(list, size, revision) != 0;
}

inline bool AddAccessAllowedAce(ACL* list, u32 revision, u32 mask, PSID identity) noexcept {
    return ::AddAccessAllowedAce(list, revision, mask, identity) != 0;
}

}  // namespace platform

#endif

#ifndef QX_PLATFORM_WINDOWS_SECURITY_NATIVE_H
#define QX_PLATFORM_WINDOWS_SECURITY_NATIVE_H

#include "system_headers.h"

namespace platform {

using ::ACL;
using ::SECURITY_ATTRIBUTES;
using ::SECURITY_DESCRIPTOR;

inline bool InitializeSecurityDescriptor(SECURITY_DESCRIPTOR* descriptor, u32 revision) noexcept {
    return ::InitializeSecurityDescriptor(descriptor, revision) != 0;
}

inline bool SetSecurityDescriptorDacl(SECURITY_DESCRIPTOR* descriptor, bool present, ACL* list,
                                      bool defaulted) noexcept {
    return ::SetSecurityDescriptorDacl(descriptor, present, list, defaulted) != 0;
}

}  // namespace platform

#endif

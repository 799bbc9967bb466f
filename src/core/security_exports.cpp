#include <qxcore/security.h>

#include <cstdlib>

#include "core/exception.h"
#include "platform/security.h"

namespace {

// The entry, and the list's own head; the identity comes on top.
constexpr u32 kListBytes = 16;

constexpr u8 kNtAuthority[] = {0, 0, 0, 0, 0, 5};
constexpr u32 kAuthenticatedUsers = 11;

QXResult BuildList(platform::SECURITY_DESCRIPTOR* descriptor, u32 mask, platform::PSID identity,
                   platform::ACL** list) {
    const u32 bytes = platform::GetLengthSid(identity) + kListBytes;
    *list = static_cast<platform::ACL*>(std::calloc(1, bytes));
    if (*list == nullptr) {
        return QX_E_OUTOFMEMORY;
    }
    return ResultOf(platform::InitializeAcl(*list, bytes, platform::kAclRevision) &&
                    platform::AddAccessAllowedAce(*list, platform::kAclRevision, mask, identity) &&
                    platform::SetSecurityDescriptorDacl(descriptor, true, *list, false));
}

QXResult Build(platform::SECURITY_DESCRIPTOR* descriptor, u32 mask, platform::ACL** list) {
    platform::PSID identity = nullptr;
    if (!platform::InitializeSecurityDescriptor(descriptor,
                                                platform::kSecurityDescriptorRevision) ||
        !platform::AllocateAndInitializeSid(kNtAuthority, 1, kAuthenticatedUsers, &identity)) {
        return ResultOf(false);
    }
    const QXResult result = BuildList(descriptor, mask, identity, list);
    platform::FreeSid(identity);
    return result;
}

}  // namespace

QXResult QXWinBuildRestrictedSD(void* descriptor, uint32_t mask, void** list) {
    static_assert(sizeof(platform::SECURITY_DESCRIPTOR) == QX_SECURITY_DESCRIPTOR_SIZE);
    platform::ACL* built = nullptr;
    const QXResult result =
        Build(static_cast<platform::SECURITY_DESCRIPTOR*>(descriptor), mask, &built);
    if (QX_FAILED(result)) {
        std::free(built);
        built = nullptr;
    }
    *list = built;
    return result;
}

void QXWinFreeRestrictedSD(void* list) {
    std::free(list);
}

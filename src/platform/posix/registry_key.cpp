#include "registry_key.h"

namespace platform {
namespace {

bool FindRoot(PredefinedRoot root, u32 view, KeyReference& base) noexcept {
    const bool wants32 = (view & kKeyWow64View32) != 0;
    switch (root) {
        case kHkeyClassesRoot:
            base = {wants32 ? kTreeClasses32 : kTreeClasses64, StoreNumber::kMachine, ~0u, 0};
            return true;
        case kHkeyLocalMachine:
            base = {wants32 ? kTreeConfig32 : kTreeConfig64, StoreNumber::kMachine, ~0u, 0};
            return true;
        case kHkeyCurrentUser:
            base = {kTreeUser, StoreNumber::kUser, ~0u, 0};
            return true;
        default:
            return false;
    }
}

}  // namespace

bool FindBase(HKEY key, u32 view, KeyReference& base) noexcept {
    if (IsPredefined(key)) {
        const auto value = static_cast<u32>(reinterpret_cast<std::uintptr_t>(key));
        return FindRoot(static_cast<PredefinedRoot>(value), view, base);
    }
    if (key == nullptr) {
        return false;
    }
    base = key->m_reference;
    return true;
}

}  // namespace platform

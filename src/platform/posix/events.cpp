#include "platform/events.h"

#include <new>

#include "shared/named_semaphore.h"

namespace platform {
namespace {

HANDLE HandleOf(Object* object) noexcept {
    if (object == nullptr) {
        SetLastError(kErrorOutOfMemory);
    }
    return object;
}

}  // namespace

HANDLE CreateEventA(const SECURITY_ATTRIBUTES*, bool manualReset, bool, const char*) noexcept {
    return HandleOf(new (std::nothrow) Event(manualReset));
}

HANDLE CreateSemaphoreA(const SECURITY_ATTRIBUTES*, i32 initialCount, i32 maximumCount,
                        const char* name) noexcept {
    if (initialCount < 0 || initialCount > maximumCount) {
        SetLastError(kErrorInvalidParameter);
        return nullptr;
    }
    if (name != nullptr) {
        return NamedSemaphore::Open(name, static_cast<u32>(initialCount));
    }
    return HandleOf(new (std::nothrow) PrivateSemaphore(static_cast<u32>(initialCount),
                                                        static_cast<u32>(maximumCount)));
}

}  // namespace platform

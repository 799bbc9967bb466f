// Random identifiers of the published version 4. No state is kept between calls, so a fork copies
// none.
#include "platform/identifiers.h"

#include <sys/random.h>

#include "cancellation.h"
#include "platform/errors.h"

namespace platform {

u32 UuidCreate(GUID* identifier) noexcept {
    const ErrnoKeeper keepErrno;
    const CancellationOff noCancellation;
    GUID random;
    ssize_t got = 0;
    do {
        got = ::getrandom(&random, sizeof random, 0);
    } while (got < 0 && errno == EINTR);
    if (got != static_cast<ssize_t>(sizeof random)) {
        return kErrorUuidNoAddress;
    }
    random.Data3 = static_cast<u16>((random.Data3 & 0x0FFF) | 0x4000);
    random.Data4[0] = static_cast<u8>((random.Data4[0] & 0x3F) | 0x80);
    __builtin_memcpy(identifier, &random, sizeof random);
    return kErrorSuccess;
}

}  // namespace platform

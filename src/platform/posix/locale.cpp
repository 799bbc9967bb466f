#include "platform/locale.h"

#include <unicode/uloc.h>

#include "platform/errors.h"

namespace platform {
namespace {

// The reference platform's number for a locale that has none.
constexpr u32 kUnnumberedLocale = 0x1000;

}  // namespace

u32 GetUserDefaultLCID() noexcept {
    const ErrnoKeeper keeper;
    const u32 number = uloc_getLCID(uloc_getDefault());
    return number != 0 ? number : kUnnumberedLocale;
}

}  // namespace platform

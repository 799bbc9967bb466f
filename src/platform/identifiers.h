// Unique identifiers.
#ifndef QX_PLATFORM_IDENTIFIERS_H
#define QX_PLATFORM_IDENTIFIERS_H

#include <qxcore/guid.h>

#include <identifiers_native.h>

#include "platform/types.h"

namespace platform {

// Fills in a new identifier. 0 on success; kErrorUuidNoAddress if the system has nothing to make it
// from; any other number comes with an identifier that is unique on this computer only. Two
// processes never get the same one, a forked child and its parent included. May block, early in the
// life of the system, until it has gathered enough randomness.
u32 UuidCreate(GUID* identifier) noexcept;

}  // namespace platform

#endif

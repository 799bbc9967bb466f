// The process's environment.
#ifndef QX_PLATFORM_ENVIRONMENT_H
#define QX_PLATFORM_ENVIRONMENT_H

#include <environment_native.h>

#include "platform/types.h"

namespace platform {

// Replaces each `%NAME%` by the value of that variable. A name that is not set, and a `%` without
// a second one, stay as they are; the second `%` of a name that is not set may begin the next. On
// back ends where a program can run with more rights than its caller no name is set in such a one.
//
// `source` is terminated text, `capacity` counts units. Returns the units that the whole result
// needs, its terminator included. If that is more than `capacity`, what `target` holds is
// unspecified. 0 on failure: 87 for a null source, 14 without memory. Does not block.
u32 ExpandEnvironmentStringsW(const char16_t* source, char16_t* target, u32 capacity) noexcept;

}  // namespace platform

#endif

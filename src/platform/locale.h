// The numbers by which the reference platform names a locale and a narrow encoding.
#ifndef QX_PLATFORM_LOCALE_H
#define QX_PLATFORM_LOCALE_H

#include <locale_native.h>

#include "platform/types.h"

namespace platform {

// The identifier of the user's locale: language, sublanguage, and from bit 16 up a sort. A locale
// that has no number of its own gives 0x1000. Neither call fails; the first may read files the
// first time.
u32 GetUserDefaultLCID() noexcept;

// The number of the code page that narrow text is in; 65001 is UTF-8.
u32 GetACP() noexcept;

}  // namespace platform

#endif

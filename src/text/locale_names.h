// The names that ICU has for the platform's locale and narrow encoding.
#ifndef QX_TEXT_LOCALE_NAMES_H
#define QX_TEXT_LOCALE_NAMES_H

#include <qxcore/result.h>

#include "platform/types.h"

// The name for the whole number; "en_US" for one that has none.
const char* QXLocaleNameFromLCID(u32 number) noexcept;

// Writes a code page's name, terminated. `size` counts units of the buffer and is at least 8.
void WriteCodePageName(u32 codePage, wchar* buffer, i32 size) noexcept;

#endif

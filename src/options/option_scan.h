#ifndef QX_OPTIONS_OPTION_SCAN_H
#define QX_OPTIONS_OPTION_SCAN_H

#include <qxcore/option.h>

#include "platform/types.h"

// Moves elements that are not options behind those that are.
inline constexpr u32 QX_OPTION_PERMUTE = 1;
// Hands such elements out as the argument of a pseudo-option 1.
inline constexpr u32 QX_OPTION_ALLARGS = 2;
// A single dash may start a long option.
inline constexpr u32 QX_OPTION_LONGONLY = 4;

// As QXGetOption, with short options beside the long ones: in `shortOptions` a letter followed by
// ":" takes an argument, by "::" an optional one, and "W;" makes "-W name" a long option. A leading
// ":" asks for no complaints and for ":" in place of "?" where an argument is missing, a leading
// "-" for QX_OPTION_ALLARGS, and a leading "+" for no QX_OPTION_PERMUTE. -1 for null
// `shortOptions`.
i32 QXGetOptionInternal(i32 argc, char** argv, const char* shortOptions,
                        const QXOptionRecord* options, i32* longIndex, u32 flags) noexcept;

#endif

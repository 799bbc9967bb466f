// Expansion of a value's text in the caller's buffer.
#ifndef QX_CONFIG_REGISTRY_EXPAND_H
#define QX_CONFIG_REGISTRY_EXPAND_H

#include <qxcore/result.h>

#include "platform/types.h"

// `stored` bytes of text are at `data`, where `capacity` bytes have room. The text ends with what
// is stored, terminator or not. QX_E_FAIL and nothing changed if the result does not fit;
// QX_E_OUTOFMEMORY. Null data is nothing to expand.
QXResult ExpandValue(void* data, u32 stored, u32 capacity);

#endif

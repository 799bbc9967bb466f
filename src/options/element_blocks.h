#ifndef QX_OPTIONS_ELEMENT_BLOCKS_H
#define QX_OPTIONS_ELEMENT_BLOCKS_H

#include "platform/types.h"

// The elements from `start` up to `end` and those from `end` up to `optEnd` change places, each
// block keeping its order.
void ExchangeBlocks(char** argv, i32 start, i32 end, i32 optEnd) noexcept;

#endif

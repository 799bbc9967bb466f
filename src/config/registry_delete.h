// Deletion of whole trees.
#ifndef QX_CONFIG_REGISTRY_DELETE_H
#define QX_CONFIG_REGISTRY_DELETE_H

#include "platform/registry.h"

// Deletes everything below a key. 0, or the bitwise or of what the steps failed with, as native
// numbers. Throws std::bad_alloc.
u32 DeleteSubkeys(platform::HKEY key, u32 view);

#endif

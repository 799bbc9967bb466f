// Root numbers and value types of the exported interface, and what they are natively.
#ifndef QX_CONFIG_REGISTRY_MAP_H
#define QX_CONFIG_REGISTRY_MAP_H

#include "platform/registry.h"

struct RegistryRoot {
    platform::HKEY m_key;
    u32 m_view;
};

// An unknown number gives a key that every operation refuses.
RegistryRoot MapRoot(i32 root);

// False for a type that cannot be written.
bool MapTypeForWriting(u32 type, u32& native);

// A type without a number of its own stays native.
u32 MapTypeRead(u32 native);

// Leaves `type` alone for a type without a number in enumerations, of which there are fewer.
void MapTypeEnumerated(u32 native, u32& type);

#endif

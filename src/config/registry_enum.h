// The record behind the handle of an enumeration.
#ifndef QX_CONFIG_REGISTRY_ENUM_H
#define QX_CONFIG_REGISTRY_ENUM_H

#include "platform/registry.h"

struct QXRegistryEnum {
    platform::HKEY m_key;
    u32 m_index = 0;
};

#endif

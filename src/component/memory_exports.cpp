// Component memory comes from the process's task allocator, which objects in other libraries share.
#include <qxcore/component.h>

#include "core/core_init.h"

QXResult QXComMalloc(uint32_t size, void** out) {
    *out = s_pMalloc->Alloc(size);
    return *out != nullptr ? QX_S_OK : QX_E_OUTOFMEMORY;
}

QXResult QXComRealloc(void** block, uint32_t size) {
    void* const moved = s_pMalloc->Realloc(*block, size);
    if (moved == nullptr && size != 0) {
        return QX_E_OUTOFMEMORY;
    }
    *block = moved;
    return QX_S_OK;
}

QXResult QXComFree(void* block) {
    s_pMalloc->Free(block);
    return QX_S_OK;
}

// The views that this process has mapped, by their addresses.
#ifndef QX_PLATFORM_POSIX_SHARED_VIEW_TABLE_H
#define QX_PLATFORM_POSIX_SHARED_VIEW_TABLE_H

#include "../entry_table.h"
#include "object_path.h"

namespace platform {

struct View : TableEntry {
    View(u64 size, const ObjectPath& path) noexcept : m_size(size), m_path(path) {}

    const u64 m_size;
    const ObjectPath m_path;
};

void InsertView(const void* address, View* view) noexcept;

// Null if there is no view at the address.
View* RemoveView(const void* address) noexcept;

// Round a fork: the child finds the table whole, and its views in it.
void LockViews() noexcept;
void UnlockViews() noexcept;

}  // namespace platform

#endif

#include "view_table.h"

#include "platform/sync.h"

namespace platform {
namespace {

constinit CRITICAL_SECTION s_lock;
constinit EntryTable s_table;

u64 KeyOf(const void* address) noexcept {
    return reinterpret_cast<std::uintptr_t>(address);
}

}  // namespace

void LockViews() noexcept {
    EnterCriticalSection(&s_lock);
}

void UnlockViews() noexcept {
    LeaveCriticalSection(&s_lock);
}

void InsertView(const void* address, View* view) noexcept {
    LockViews();
    s_table.Insert(KeyOf(address), view);
    UnlockViews();
}

View* RemoveView(const void* address) noexcept {
    LockViews();
    auto* const view = static_cast<View*>(s_table.Remove(KeyOf(address)));
    UnlockViews();
    return view;
}

}  // namespace platform

#include "checked_handles.h"

#include "platform/errors.h"
#include "platform/handles.h"
#include "platform/sync.h"
#include "platform/threads.h"

namespace platform {
namespace {

constinit CRITICAL_SECTION s_lock;
constinit EntryTable s_table;
constinit u64 s_lastHandle = 1;

bool IsPseudoHandle(const void* handle) noexcept {
    return reinterpret_cast<std::intptr_t>(handle) < 0;
}

u64 KeyOf(const void* handle) noexcept {
    return reinterpret_cast<std::uintptr_t>(handle);
}

}  // namespace

void LockCheckedHandles() noexcept {
    EnterCriticalSection(&s_lock);
}

void UnlockCheckedHandles() noexcept {
    LeaveCriticalSection(&s_lock);
}

void* NewCheckedHandle(CheckedObject* object) noexcept {
    LockCheckedHandles();
    s_lastHandle += 2;
    const u64 handle = s_lastHandle;
    s_table.Insert(handle, object);
    UnlockCheckedHandles();
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(handle));
}

CheckedReference::CheckedReference(const void* handle) noexcept {
    LockCheckedHandles();
    m_object = static_cast<CheckedObject*>(s_table.Find(KeyOf(handle)));
    if (m_object != nullptr) {
        m_object->m_references.fetch_add(1, std::memory_order_relaxed);
    }
    UnlockCheckedHandles();
}

void CheckedReference::Drop(CheckedObject* object) noexcept {
    if (object != nullptr && object->m_references.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        delete object;
    }
}

bool CloseCheckedHandle(const void* handle) noexcept {
    if (IsPseudoHandle(handle)) {
        return true;
    }
    LockCheckedHandles();
    auto* const object = static_cast<CheckedObject*>(s_table.Remove(KeyOf(handle)));
    UnlockCheckedHandles();
    if (object == nullptr) {
        SetLastError(kErrorInvalidHandle);
        return false;
    }
    CheckedReference::Drop(object);
    return true;
}

u32 WaitForCheckedHandle(const void* handle, u32 milliseconds) noexcept {
    if (handle == kCurrentThread) {
        Sleep(milliseconds);
        return kWaitTimeout;
    }
    const CheckedReference object(handle);
    if (object.Get() == nullptr) {
        SetLastError(kErrorInvalidHandle);
        return kWaitFailed;
    }
    return object.Get()->Wait(milliseconds);
}

}  // namespace platform

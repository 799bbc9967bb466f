#include <qxcore/semaphore.h>

#include "core/entry_guard.h"
#include "platform/events.h"
#include "sync/semaphore.h"

namespace {

constexpr i32 kMaximumCount = 32767;

platform::HANDLE NativeOf(QXHandle semaphore) {
    return static_cast<CQXSemaphoreImpl*>(semaphore)->m_handle;
}

}  // namespace

CQXSemaphoreImpl::CQXSemaphoreImpl(u32 initialCount, const char* name, u32 flags)
    : WaitingObject(name, flags) {
    if ((flags & QX_SEMAPHORE_NAMED) != 0) {
        throw EQXCoreException(QX_E_NOTIMPL);
    }
    m_handle =
        platform::CreateSemaphoreA(nullptr, static_cast<i32>(initialCount), kMaximumCount, nullptr);
    if (m_handle == nullptr) {
        ThrowLastError();
    }
}

QXResult QXSemaphoreCreate(uint32_t initialCount, const char* name, uint32_t flags, QXHandle* out) {
    *out = QX_INVALID_HANDLE;
    return RunGuarded([&] {
        *out = new CQXSemaphoreImpl(initialCount, name, flags);
        return QX_S_OK;
    });
}

QXResult QXSemaphoreDestroy(QXHandle semaphore) {
    delete static_cast<CQXSemaphoreImpl*>(semaphore);
    return QX_S_OK;
}

QXResult QXSemaphorePost(QXHandle semaphore) {
    return RunGuarded(
        [&] { return ResultOf(platform::ReleaseSemaphore(NativeOf(semaphore), 1, nullptr)); });
}

QXResult QXSemaphoreWait(QXHandle semaphore) {
    return RunGuarded([&] { return WaitFor(NativeOf(semaphore), platform::kInfinite, QX_S_OK); });
}

QXResult QXSemaphoreTryWait(QXHandle semaphore) {
    return RunGuarded([&] { return WaitFor(NativeOf(semaphore), 0, QX_E_FAIL); });
}

QXResult QXSemaphoreGetValue(QXHandle, uint32_t* value) {
    return RunGuarded([&] {
        *value = UINT32_MAX;
        return QX_S_OK;
    });
}

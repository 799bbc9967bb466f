#include <qxcore/security.h>
#include <qxcore/semaphore.h>

#include "core/entry_guard.h"
#include "platform/events.h"
#include "sync/semaphore.h"

namespace {

constexpr i32 kMaximumCount = 32767;
constexpr u32 kSemaphoreAllAccess = 0x1F0003;

platform::HANDLE NativeOf(QXHandle semaphore) {
    return static_cast<CQXSemaphoreImpl*>(semaphore)->m_handle;
}

platform::HANDLE CreateAnonymous(u32 initialCount) {
    return platform::CreateSemaphoreA(nullptr, static_cast<i32>(initialCount), kMaximumCount,
                                      nullptr);
}

// Open to authenticated users only.
platform::HANDLE CreateNamed(u32 initialCount, const std::string& name) {
    platform::SECURITY_DESCRIPTOR descriptor;
    void* list = nullptr;
    ThrowIfFailed(QXWinBuildRestrictedSD(&descriptor, kSemaphoreAllAccess, &list));
    platform::SECURITY_ATTRIBUTES attributes;
    attributes.nLength = sizeof attributes;
    attributes.lpSecurityDescriptor = &descriptor;
    attributes.bInheritHandle = 1;
    const platform::HANDLE semaphore = platform::CreateSemaphoreA(
        &attributes, static_cast<i32>(initialCount), kMaximumCount, name.c_str());
    const u32 error = platform::GetLastError();
    QXWinFreeRestrictedSD(list);
    platform::SetLastError(error);
    return semaphore;
}

}  // namespace

CQXSemaphoreImpl::CQXSemaphoreImpl(u32 initialCount, const char* name, u32 flags)
    : WaitingObject(name, flags) {
    m_handle = (flags & QX_SEMAPHORE_NAMED) != 0 ? CreateNamed(initialCount, "SEM:" + m_name)
                                                 : CreateAnonymous(initialCount);
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

#include "process/process_manager.h"

#include <algorithm>

#include "sync/mutex_holder.h"

namespace {

std::uintptr_t ValueOf(platform::HANDLE child) {
    return reinterpret_cast<std::uintptr_t>(child);
}

// To wait for oneself does not end, and the handle is nobody's to give up.
void RefuseOwnProcess(platform::HANDLE child) {
    if (child == platform::GetCurrentProcess()) {
        throw EQXCoreException(QX_E_HANDLE);
    }
}

void Close(platform::HANDLE child) {
    if (!platform::CloseHandle(child)) {
        ThrowLastError();
    }
}

}  // namespace

CQXProcessManager::ChildSet::node_type CQXProcessManager::NewEntry() {
    ChildSet single = {0};
    return single.extract(single.begin());
}

void CQXProcessManager::AddChild(ChildSet::node_type entry, platform::HANDLE child) {
    entry.value() = ValueOf(child);
    MutexHolder hold(m_setMutex);
    m_childSet.insert(std::move(entry));
}

void CQXProcessManager::Forget(platform::HANDLE child) {
    MutexHolder hold(m_setMutex);
    m_childSet.erase(ValueOf(child));
}

void CQXProcessManager::Detach(platform::HANDLE child) {
    RefuseOwnProcess(child);
    Close(child);
    Forget(child);  // NOLINT(clang-analyzer-cplusplus.NewDelete): by its value alone
}

// A child that has ended with the code of one that runs counts as that for ever.
u32 CQXProcessManager::Collect(platform::HANDLE child) {
    u32 code = 0;
    if (!platform::GetExitCodeProcess(child, &code)) {
        ThrowLastError();
    }
    if (code == platform::kStillActive) {
        throw EQXCoreException(QX_E_FAIL);
    }
    Close(child);
    Forget(child);  // NOLINT(clang-analyzer-cplusplus.NewDelete): by its value alone
    return code;
}

u32 CQXProcessManager::Join(platform::HANDLE child) {
    RefuseOwnProcess(child);
    if (platform::WaitForSingleObject(child, platform::kInfinite) == platform::kWaitFailed) {
        ThrowLastError();
    }
    return Collect(child);
}

u32 CQXProcessManager::JoinAny(platform::HANDLE* child) {
    MutexHolder hold(m_setMutex);
    *child = WaitForAny();
    return Collect(*child);
}

void CQXProcessManager::GrowWaitArray(std::size_t count) {
    if (m_waitCapacity < count) {
        m_waitHandles.reset();
        m_waitCapacity = 0;
        m_waitHandles.reset(new platform::HANDLE[2 * count]);
        m_waitCapacity = 2 * count;
    }
}

platform::HANDLE CQXProcessManager::WaitForAny() {
    GrowWaitArray(m_childSet.size());
    std::transform(m_childSet.begin(), m_childSet.end(), m_waitHandles.get(),
                   [](std::uintptr_t value) { return reinterpret_cast<platform::HANDLE>(value); });
    const u32 index = platform::WaitForMultipleObjects(
        static_cast<u32>(m_childSet.size()), m_waitHandles.get(), false, platform::kInfinite);
    if (index == platform::kWaitFailed) {
        ThrowLastError();
    }
    return m_waitHandles[index];
}

// Child processes.
#ifndef QX_PROCESS_PROCESS_MANAGER_H
#define QX_PROCESS_PROCESS_MANAGER_H

#include <cstdint>
#include <memory>
#include <set>

#include "platform/processes.h"
#include "sync/owned_mutex.h"

// The children whose handles are open. Only a wait for any of them asks for the set: everything
// else goes by the handle.
//
// All operations throw what fails.
class CQXProcessManager {
  public:
    // In the order of the handles' values.
    using ChildSet = std::set<std::uintptr_t>;

    // Closes no handle and waits for no child.
    CQXProcessManager() = default;
    CQXProcessManager(const CQXProcessManager&) = delete;
    CQXProcessManager& operator=(const CQXProcessManager&) = delete;

    // An entry for AddChild, which then has nothing to allocate: it works when the child is running
    // already.
    static ChildSet::node_type NewEntry();
    void AddChild(ChildSet::node_type entry, platform::HANDLE child);

    void Detach(platform::HANDLE child);

    // Gives the exit code of a child that has ended, and its handle up.
    u32 Collect(platform::HANDLE child);
    // Waits for the end first.
    u32 Join(platform::HANDLE child);
    // Waits for any child. The mutex is held meanwhile.
    u32 JoinAny(platform::HANDLE* child);

  private:
    void Forget(platform::HANDLE child);
    void GrowWaitArray(std::size_t count);
    platform::HANDLE WaitForAny();

    // The mutex stands behind what it guards, so that it is destroyed first.
    ChildSet m_childSet;
    OwnedMutex m_setMutex{"CQXProcessManager::m_setMutex", 0};
    std::unique_ptr<platform::HANDLE[]> m_waitHandles;
    u64 m_waitCapacity = 0;
};

#endif

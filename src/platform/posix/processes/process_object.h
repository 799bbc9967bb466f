// What stands behind the handle of a child.
#ifndef QX_PLATFORM_POSIX_PROCESSES_PROCESS_OBJECT_H
#define QX_PLATFORM_POSIX_PROCESSES_PROCESS_OBJECT_H

#include <memory>

#include "../checked_handles.h"
#include "platform/handles.h"
#include "started_process.h"

namespace platform {

class ProcessObject final : public CheckedObject {
  public:
    explicit ProcessObject(std::unique_ptr<StartedProcess> process) noexcept
        : m_process(std::move(process)) {}
    ~ProcessObject() override;

    StartedProcess& Process() noexcept { return *m_process; }

    // `milliseconds` is all ones.
    u32 Wait(u32 milliseconds) noexcept override;

  private:
    std::unique_ptr<StartedProcess> m_process;
};

// As FileReference.
class ProcessReference {
  public:
    explicit ProcessReference(HANDLE handle) noexcept;

    explicit operator bool() const noexcept { return m_process != nullptr; }
    ProcessObject* operator->() const noexcept { return m_process; }

  private:
    const CheckedReference m_reference;
    ProcessObject* m_process;
};

}  // namespace platform

#endif

// What events, gates and semaphores have in common.
#ifndef QX_SYNC_WAITING_OBJECT_H
#define QX_SYNC_WAITING_OBJECT_H

#include <string>

#include "core/exception.h"
#include "platform/handles.h"

// The record behind the handle. The native object is made by the class on top, last of all.
class WaitingObject {
  public:
    WaitingObject(const char* name, u32 flags)
        : m_name(name != nullptr ? name : ""), m_flags(flags) {}
    ~WaitingObject() {
        if (m_handle != nullptr) {
            platform::CloseHandle(m_handle);
        }
    }
    WaitingObject(const WaitingObject&) = delete;
    WaitingObject& operator=(const WaitingObject&) = delete;

    platform::HANDLE m_handle = nullptr;

  protected:
    const std::string m_name;
    const u32 m_flags;
};

// `timeout` is the result for all that is neither a signal nor a failure.
inline QXResult WaitFor(platform::HANDLE handle, u32 milliseconds, QXResult timeout) {
    switch (platform::WaitForSingleObject(handle, milliseconds)) {
        case platform::kWaitObject0:
            return QX_S_OK;
        case platform::kWaitFailed:
            return QXResultFromNative(platform::GetLastError());
        default:
            return timeout;
    }
}

#endif

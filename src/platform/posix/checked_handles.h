// Handles that are recognised when they have been closed: those of threads, processes, files and
// mappings. They are odd numbers, which no address of an object is, and none is given twice. The
// pseudo handles of the current process and thread, which no table knows, are negative.
#ifndef QX_PLATFORM_POSIX_CHECKED_HANDLES_H
#define QX_PLATFORM_POSIX_CHECKED_HANDLES_H

#include <atomic>

#include "entry_table.h"
#include "waiting/object.h"

namespace platform {

class CheckedObject : public Object, public TableEntry {
  private:
    friend void* NewCheckedHandle(CheckedObject* object) noexcept;
    friend class CheckedReference;

    // One of the handle, one of each operation that is at work.
    std::atomic<u32> m_references{1};
};

inline void* const kCurrentProcess = reinterpret_cast<void*>(std::intptr_t{-1});
inline void* const kCurrentThread = reinterpret_cast<void*>(std::intptr_t{-2});

// True for null and the pseudo handles too.
inline bool IsCheckedHandle(const void* handle) noexcept {
    const auto value = reinterpret_cast<std::intptr_t>(handle);
    return value <= 0 || (value & 1) != 0;
}

// The object goes with its handle, and at once if no operation is at work on it.
void* NewCheckedHandle(CheckedObject* object) noexcept;

// Keeps the object of a handle alive for the length of an operation, or is empty if the handle is
// none that is open.
class CheckedReference {
  public:
    explicit CheckedReference(const void* handle) noexcept;
    ~CheckedReference() { Drop(m_object); }
    CheckedReference(const CheckedReference&) = delete;
    CheckedReference& operator=(const CheckedReference&) = delete;

    CheckedObject* Get() const noexcept { return m_object; }

  private:
    friend bool CloseCheckedHandle(const void* handle) noexcept;

    static void Drop(CheckedObject* object) noexcept;

    CheckedObject* m_object;
};

// As CloseHandle and WaitForSingleObject: 6 for what is no open handle.
bool CloseCheckedHandle(const void* handle) noexcept;
u32 WaitForCheckedHandle(const void* handle, u32 milliseconds) noexcept;

// Round a fork: the table's lock is held meanwhile, so that the child finds the table whole.
void LockCheckedHandles() noexcept;
void UnlockCheckedHandles() noexcept;

}  // namespace platform

#endif

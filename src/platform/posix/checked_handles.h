// Handles that are recognised when they have been closed: those of threads, processes, files and
// mappings. They are odd numbers, which no address of an object is. The pseudo handles of the
// current process and thread, which no table knows, are negative.
//
// A handle is the number of its place in the table and of the place's generation, which begins
// anew with each object: no handle is given twice before its place has had all of 2^42 objects.
// Places stay where they are while the library is loaded, so any number may be looked up without a
// lock. m_state of a place is its generation, whether the handle is open, and the references to the
// object, of which the open handle has one and each operation that is at work another:
//   New    closed, none -> open, one (release), by whoever took the place from the free ones
//   Pin    open -> one more (acquire)
//   Close  open -> closed, by one caller alone
//   Drop   one less (release). The last one (acquire) gives the place back with the next
//          generation, and deletes the object. Closed with none is never left but by New.
// m_object is written by New before the release, and read by those who have a reference. m_nextFree
// is guarded by the table's lock.
#ifndef QX_PLATFORM_POSIX_CHECKED_HANDLES_H
#define QX_PLATFORM_POSIX_CHECKED_HANDLES_H

#include <atomic>
#include <cstddef>
#include <new>

#include "waiting/object.h"

namespace platform {

// No object is made for whose handle there is no place, so that the handle itself cannot fail.
class CheckedObject : public Object {
  public:
    static void* operator new(std::size_t size);
    static void* operator new(std::size_t size, const std::nothrow_t&) noexcept;
    static void operator delete(void* object) noexcept;
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

// A line of the processor's cache each, so that threads at work on different handles do not meet.
struct alignas(64) HandlePlace {
    std::atomic<u64> m_state;
    CheckedObject* m_object;
    u64 m_number;
    HandlePlace* m_nextFree;
};

// Keeps the object of a handle alive for the length of an operation, or is empty if the handle is
// none that is open.
class CheckedReference {
  public:
    explicit CheckedReference(const void* handle) noexcept;
    ~CheckedReference();
    CheckedReference(const CheckedReference&) = delete;
    CheckedReference& operator=(const CheckedReference&) = delete;

    CheckedObject* Get() const noexcept { return m_place != nullptr ? m_place->m_object : nullptr; }

  private:
    HandlePlace* const m_place;
};

// As CloseHandle and WaitForSingleObject: 6 for what is no open handle.
bool CloseCheckedHandle(const void* handle) noexcept;
u32 WaitForCheckedHandle(const void* handle, u32 milliseconds) noexcept;

// Round a fork: the table's lock is held meanwhile, so that the child finds the table whole.
void LockCheckedHandles() noexcept;
void UnlockCheckedHandles() noexcept;

// The memory of all places but the first ones, when the library goes.
void FreeCheckedHandles() noexcept;

}  // namespace platform

#endif

// Starting threads.
#include <sched.h>
#include <time.h>

#include <algorithm>
#include <memory>
#include <new>

#include "platform/errors.h"
#include "platform/threads.h"
#include "thread_object.h"

namespace platform {
namespace {

constexpr std::size_t kStackUnit = std::size_t{64} << 10;
constexpr std::size_t kSmallestStack = std::size_t{1} << 20;

struct Start {
    ThreadEntry m_entry;
    void* m_argument;
};

// Not noexcept: a thread that ends itself, or is cancelled, unwinds through here.
void* RunStarted(void* argument) {
    const Start start = *static_cast<Start*>(argument);
    delete static_cast<Start*>(argument);
    return reinterpret_cast<void*>(std::uintptr_t{start.m_entry(start.m_argument)});
}

// The reference platform reserves so much for a smaller request too, and clients count on it.
std::size_t StackSize(u32 wanted) noexcept {
    return std::max((wanted + kStackUnit - 1) / kStackUnit * kStackUnit, kSmallestStack);
}

class Attributes {
  public:
    explicit Attributes(u32 stackSize) noexcept {
        ::pthread_attr_init(&m_attributes);
        if (stackSize != 0) {
            ::pthread_attr_setstacksize(&m_attributes, StackSize(stackSize));
        }
    }
    ~Attributes() { ::pthread_attr_destroy(&m_attributes); }
    Attributes(const Attributes&) = delete;
    Attributes& operator=(const Attributes&) = delete;

    const pthread_attr_t* Get() const noexcept { return &m_attributes; }

  private:
    pthread_attr_t m_attributes;
};

// The number of a thread that has not ended, without a word with it: the kernel names a thread's
// processor clock by the complement of its number, above three bits of kind.
u32 NumberOf(pthread_t thread) noexcept {
    clockid_t clock;
    return ::pthread_getcpuclockid(thread, &clock) == 0 ? ~static_cast<u32>(clock >> 3) : 0;
}

u32 ErrorOfStart(int error) noexcept {
    return error == EAGAIN ? static_cast<u32>(kErrorNoSystemResources)
                           : NativeErrorFromErrno(error);
}

}  // namespace

std::uintptr_t _beginthreadex(void*, u32 stackSize, ThreadEntry entry, void* argument, u32,
                              u32* id) noexcept {
    const ErrnoKeeper keepErrno;
    const Attributes attributes(stackSize);
    std::unique_ptr<ThreadObject> object(new (std::nothrow) ThreadObject);
    std::unique_ptr<Start> start(new (std::nothrow) Start{entry, argument});
    pthread_t thread;
    const int error = object != nullptr && start != nullptr
                          ? ::pthread_create(&thread, attributes.Get(), RunStarted, start.get())
                          : ENOMEM;
    if (error != 0) {
        if (object != nullptr) {
            object->SetNoThread();
        }
        object.reset();
        SetLastError(ErrorOfStart(error));
        return 0;
    }
    static_cast<void>(start.release());
    *id = NumberOf(thread);
    object->SetThread(thread);
    return reinterpret_cast<std::uintptr_t>(NewCheckedHandle(object.release()));
}

bool GetExitCodeThread(HANDLE thread, u32* code) noexcept {
    const CheckedReference object(thread);
    const auto* const found = dynamic_cast<ThreadObject*>(object.Get());
    if (found == nullptr) {
        SetLastError(kErrorInvalidHandle);
        return false;
    }
    *code = found->ExitCode();
    return true;
}

bool SwitchToThread() noexcept {
    const ErrnoKeeper keepErrno;
    return ::sched_yield() == 0;
}

}  // namespace platform

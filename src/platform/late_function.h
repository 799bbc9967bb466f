// A function of a library that is loaded while the process runs.
#ifndef QX_PLATFORM_LATE_FUNCTION_H
#define QX_PLATFORM_LATE_FUNCTION_H

#include <atomic>

namespace platform {

// Atomic since two threads may bind at once: both store the same.
template <typename Function>
class LateFunction {
  public:
    // False for a function that was not found.
    bool Bind(void* address) noexcept {
        m_function.store(reinterpret_cast<Function*>(address), std::memory_order_relaxed);
        return address != nullptr;
    }

    // It is called by its name.
    operator Function*() const noexcept { return m_function.load(std::memory_order_relaxed); }

  private:
    std::atomic<Function*> m_function = nullptr;
};

}  // namespace platform

#endif

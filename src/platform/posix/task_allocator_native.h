// The task allocator's interface: the published order of its operations, without the two that this
// system never calls behind them.
#ifndef QX_PLATFORM_POSIX_TASK_ALLOCATOR_NATIVE_H
#define QX_PLATFORM_POSIX_TASK_ALLOCATOR_NATIVE_H

#include <cstddef>
#include <cstdint>

namespace platform {

class IMalloc {
  public:
    virtual std::uint32_t AddRef() noexcept = 0;
    virtual std::uint32_t Release() noexcept = 0;
    virtual void* Alloc(std::size_t size) noexcept = 0;
    virtual void* Realloc(void* block, std::size_t size) noexcept = 0;
    virtual void Free(void* block) noexcept = 0;

  protected:
    ~IMalloc() = default;
};

}  // namespace platform

#endif

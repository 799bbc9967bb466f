// A counted object over the C library's heap. The heap is the process's, so a block may be
// allocated by one library and freed by another.
#include "platform/task_allocator.h"

#include <atomic>
#include <cstdlib>

namespace platform {
namespace {

class HeapAllocator final : public IMalloc {
  public:
    constexpr HeapAllocator() noexcept = default;

    u32 AddRef() noexcept override { return ++m_references; }
    u32 Release() noexcept override { return --m_references; }

    void* Alloc(std::size_t size) noexcept override { return std::malloc(size != 0 ? size : 1); }

    void* Realloc(void* block, std::size_t size) noexcept override {
        if (block == nullptr) {
            return Alloc(size);
        }
        if (size == 0) {
            Free(block);
            return nullptr;
        }
        return std::realloc(block, size);
    }

    void Free(void* block) noexcept override { std::free(block); }

  private:
    // The process holds one, so the count never falls to 0 and the allocator outlives its users:
    // what is released at the very end may still free its memory.
    std::atomic<u32> m_references{1};
};

constinit HeapAllocator s_allocator;

}  // namespace

i32 CoGetMalloc(u32, IMalloc** allocator) noexcept {
    s_allocator.AddRef();
    *allocator = &s_allocator;
    return 0;
}

}  // namespace platform

#include "support/allocation_fault.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constinit thread_local int t_untilFault = 0;
constinit thread_local bool t_struck = false;

void* Allocate(std::size_t size) {
    if (t_untilFault != 0 && --t_untilFault == 0) {
        t_struck = true;
        return nullptr;
    }
    return std::malloc(size != 0 ? size : 1);
}

}  // namespace

void FailAllocation(int n) {
    t_untilFault = n;
    t_struck = false;
}

bool AllocationHasFailed() {
    return t_struck;
}

// All forms that the library uses: a sanitizer has its own of each.
void* operator new(std::size_t size) {
    if (void* const block = Allocate(size)) {
        return block;
    }
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}
void operator delete(void* block) noexcept {
    std::free(block);
}
void operator delete[](void* block) noexcept {
    std::free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}

#include "support/allocation_fault.h"

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constinit thread_local int t_untilFault = 0;
constinit thread_local bool t_struck = false;

bool FaultStrikesNow() {
    if (t_untilFault == 0 || --t_untilFault != 0) {
        return false;
    }
    t_struck = true;
    return true;
}

void* Allocate(std::size_t size) {
    return FaultStrikesNow() ? nullptr : std::malloc(size != 0 ? size : 1);
}

void* AllocateOrThrow(std::size_t size) {
    if (void* const block = Allocate(size)) {
        return block;
    }
    throw std::bad_alloc();
}

}  // namespace

void FailAllocation(int n) {
    t_untilFault = n;
    t_struck = false;
}

bool AllocationHasFailed() {
    return t_struck;
}

void* operator new(std::size_t size) {
    return AllocateOrThrow(size);
}
void* operator new[](std::size_t size) {
    return AllocateOrThrow(size);
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

#include <qxcore/atomic.h>

#include <atomic>

uint32_t QXAtomicAdd32(uint32_t* target, uint32_t value) {
    return std::atomic_ref(*target).fetch_add(value) + value;
}

size_t QXAtomicAddSZ(size_t* target, size_t value) {
    return std::atomic_ref(*target).fetch_add(value) + value;
}

uint32_t QXAtomicIncrement(uint32_t* target) {
    return ++std::atomic_ref(*target);
}

uint32_t QXAtomicDecrement(uint32_t* target) {
    return --std::atomic_ref(*target);
}

uint32_t QXAtomicExchange(uint32_t* target, uint32_t value) {
    return std::atomic_ref(*target).exchange(value);
}

uint32_t QXAtomicCompareExchange(uint32_t* target, uint32_t exchange, uint32_t comparand) {
    uint32_t found = comparand;
    std::atomic_ref(*target).compare_exchange_strong(found, exchange);
    return found;
}

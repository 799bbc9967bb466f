#include <qxcore/bytes.h>

#include <cstring>

namespace {

template <typename Value>
Value Load(const void* address) {
    Value value;
    std::memcpy(&value, address, sizeof value);
    return value;
}

template <typename Value>
void* Store(void* address, Value value) {
    return std::memcpy(address, &value, sizeof value);
}

}  // namespace

uint16_t QXGetUnalignedInt16(const void* address) {
    return Load<uint16_t>(address);
}

uint32_t QXGetUnalignedInt32(const void* address) {
    return Load<uint32_t>(address);
}

uint64_t QXGetUnalignedInt64(const void* address) {
    return Load<uint64_t>(address);
}

void* QXPutUnalignedInt16(void* address, uint16_t value) {
    return Store(address, value);
}

void* QXPutUnalignedInt32(void* address, uint32_t value) {
    return Store(address, value);
}

void* QXPutUnalignedInt64(void* address, uint64_t value) {
    return Store(address, value);
}

uint16_t QXSwapInt16(uint16_t value) {
    return __builtin_bswap16(value);
}

uint32_t QXSwapInt32(uint32_t value) {
    return __builtin_bswap32(value);
}

uint64_t QXSwapInt64(uint64_t value) {
    return __builtin_bswap64(value);
}

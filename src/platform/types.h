// The integer types of the system, as the logic and the platform layer use them.
#ifndef QX_PLATFORM_TYPES_H
#define QX_PLATFORM_TYPES_H

#include <cstddef>
#include <cstdint>

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;
using i16 = std::int16_t;
using i32 = std::int32_t;
using i64 = std::int64_t;

#endif

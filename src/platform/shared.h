// Blocks of memory that processes share by name.
#ifndef QX_PLATFORM_SHARED_H
#define QX_PLATFORM_SHARED_H

#include <shared_native.h>

#include "platform/handles.h"
#include "platform/security.h"
#include "platform/types.h"

namespace platform {

// A mapping lives as long as a handle or a view of it is left in any process. It counts whole
// pages.

inline constexpr u32 kPageReadWrite = 4;  // PAGE_READWRITE

enum FileMapAccess : u32 {
    kFileMapWrite = 2,  // FILE_MAP_WRITE
    kFileMapRead = 4,   // FILE_MAP_READ
};

// Makes a mapping of `size` bytes, or opens the one of that name, whatever its size. `file` is all
// ones, `protection` kPageReadWrite, `sizeHigh` 0. The handle has all access. The last error is 0
// if the mapping is new and 183 if it was there. Null on failure: 87 for a size of 0, 6 if the name
// stands for something else, 5, 14, 112 or 1455 if there is no space. May block while others open
// the same mapping.
HANDLE CreateFileMappingW(HANDLE file, const SECURITY_ATTRIBUTES* attributes, u32 protection,
                          u32 sizeHigh, u32 size, const char16_t* name) noexcept;

// Opens a mapping with the given access and sets the last error to 0. Null on failure: 2 if there
// is none of that name; otherwise as above.
HANDLE OpenFileMappingW(u32 access, bool inherit, const char16_t* name) noexcept;

// Maps the whole, `offsetHigh`, `offset` and `size` being 0. `access` is one of the values above; 0
// gives pages that can be neither read nor written, or fails. Null on failure: 6 if the handle is
// none of an open mapping, 5 for access that it was not opened with, 14. Does not block.
void* MapViewOfFile(HANDLE mapping, u32 access, u32 offsetHigh, u32 offset,
                    std::size_t size) noexcept;

// False with 487 if there is no view at the address; then nothing is unmapped. Does not block.
bool UnmapViewOfFile(const void* address) noexcept;

}  // namespace platform

#endif

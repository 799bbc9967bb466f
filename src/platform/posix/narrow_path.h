// Paths in the form of the kernel.
#ifndef QX_PLATFORM_POSIX_NARROW_PATH_H
#define QX_PLATFORM_POSIX_NARROW_PATH_H

#include <string>

namespace platform {

// In UTF-8, with `/` for `\`. Empty for text that no file name can have. Throws std::bad_alloc.
std::string NarrowPath(const char16_t* path);

}  // namespace platform

#endif

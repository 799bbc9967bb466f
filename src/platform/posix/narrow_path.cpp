#include "narrow_path.h"

#include <algorithm>

#include "platform/multibyte.h"

namespace platform {

std::string NarrowPath(const char16_t* path) {
    const std::size_t length = wcstombs(nullptr, path, 0);
    std::string narrow(length != SIZE_MAX ? length : 0, '\0');
    wcstombs(narrow.data(), path, narrow.size());
    std::replace(narrow.begin(), narrow.end(), '\\', '/');
    return narrow;
}

}  // namespace platform

#ifndef QX_PLATFORM_WINDOWS_STREAMS_NATIVE_H
#define QX_PLATFORM_WINDOWS_STREAMS_NATIVE_H

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "system_headers.h"

namespace platform {

// "N" keeps the file out of programs that this process starts.
inline std::FILE* fopen(const char* path, const char* mode) noexcept {
    char own[16];
    if (std::strlen(mode) + 2 > sizeof own) {
        ::SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return ::fopen(path, std::strcat(std::strcpy(own, mode), "N"));
}

}  // namespace platform

#endif

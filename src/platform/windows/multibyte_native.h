#ifndef QX_PLATFORM_WINDOWS_MULTIBYTE_NATIVE_H
#define QX_PLATFORM_WINDOWS_MULTIBYTE_NATIVE_H

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "system_headers.h"

namespace platform {

inline std::size_t mbstowcs(char16_t* target, const char* source, std::size_t limit) noexcept {
    // Not every runtime takes a limit of more than an int.
    return ::mbstowcs(Native(target), source, std::min<std::size_t>(limit, INT_MAX));
}

inline std::size_t wcstombs(char* target, const char16_t* source, std::size_t limit) noexcept {
    return ::wcstombs(target, Native(source), std::min<std::size_t>(limit, INT_MAX));
}

inline i32 MultiByteToWideChar(const char* source, i32 length, char16_t* target,
                               i32 capacity) noexcept {
    return ::MultiByteToWideChar(CP_ACP, 0, source, length, Native(target), capacity);
}

inline i32 WideCharToMultiByte(const char16_t* source, i32 length, char* target,
                               i32 capacity) noexcept {
    return ::WideCharToMultiByte(CP_ACP, 0, Native(source), length, target, capacity, nullptr,
                                 nullptr);
}

}  // namespace platform

#endif

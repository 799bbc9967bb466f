#ifndef QX_PLATFORM_WINDOWS_REGISTRY_NATIVE_H
#define QX_PLATFORM_WINDOWS_REGISTRY_NATIVE_H

#include "clocks_native.h"
#include "security_native.h"
#include "system_headers.h"

namespace platform {

using ::HKEY;

inline u32 RegOpenKeyExW(HKEY key, const char16_t* path, u32 options, u32 access,
                         HKEY* opened) noexcept {
    return static_cast<u32>(::RegOpenKeyExW(key, Native(path), options, access, opened));
}

inline u32 RegCreateKeyExW(HKEY key, const char16_t* path, u32 reserved, const char16_t*,
                           u32 options, u32 access, const SECURITY_ATTRIBUTES* attributes,
                           HKEY* opened, u32* disposition) noexcept {
    return static_cast<u32>(::RegCreateKeyExW(key, Native(path), reserved, nullptr, options, access,
                                              const_cast<SECURITY_ATTRIBUTES*>(attributes), opened,
                                              Native(disposition)));
}

inline u32 RegCloseKey(HKEY key) noexcept {
    return static_cast<u32>(::RegCloseKey(key));
}

inline u32 RegQueryValueExW(HKEY key, const char16_t* name, u32* reserved, u32* type, void* data,
                            u32* size) noexcept {
    return static_cast<u32>(::RegQueryValueExW(key, Native(name), Native(reserved), Native(type),
                                               static_cast<BYTE*>(data), Native(size)));
}

inline u32 ReadRegistryValue(HKEY key, const char16_t* path, u32 view, const char16_t* name,
                             u32* type, void* data, u32* size) noexcept {
    HKEY opened;
    u32 error = platform::RegOpenKeyExW(key, path, 0, KEY_READ | view, &opened);
    if (error == ERROR_SUCCESS) {
        error = platform::RegQueryValueExW(opened, name, nullptr, type, data, size);
        platform::RegCloseKey(opened);
    }
    return error;
}

inline u32 WriteRegistryValue(HKEY key, const char16_t* path, u32 view,
                              const SECURITY_ATTRIBUTES* attributes, const char16_t* name, u32 type,
                              const void* data, u32 size) noexcept {
    HKEY opened;
    u32 disposition = 0;
    u32 error = platform::RegCreateKeyExW(key, path, 0, nullptr, 0, KEY_ALL_ACCESS | view,
                                          attributes, &opened, &disposition);
    if (error == ERROR_SUCCESS) {
        error = static_cast<u32>(
            ::RegSetValueExW(opened, Native(name), 0, type, static_cast<const BYTE*>(data), size));
        platform::RegCloseKey(opened);
    }
    return error;
}

inline u32 RegDeleteKeyExW(HKEY key, const char16_t* path, u32 view, u32 reserved) noexcept {
    return static_cast<u32>(::RegDeleteKeyExW(key, Native(path), view, reserved));
}

inline u32 RegDeleteValueW(HKEY key, const char16_t* name) noexcept {
    return static_cast<u32>(::RegDeleteValueW(key, Native(name)));
}

inline u32 RegEnumKeyExW(HKEY key, u32 index, char16_t* name, u32* length, u32* reserved,
                         char16_t* className, u32* classLength, FILETIME* written) noexcept {
    return static_cast<u32>(::RegEnumKeyExW(key, index, Native(name), Native(length),
                                            Native(reserved), Native(className),
                                            Native(classLength), written));
}

inline u32 RegEnumValueW(HKEY key, u32 index, char16_t* name, u32* length, u32* reserved, u32* type,
                         void* data, u32* size) noexcept {
    return static_cast<u32>(::RegEnumValueW(key, index, Native(name), Native(length),
                                            Native(reserved), Native(type),
                                            static_cast<BYTE*>(data), Native(size)));
}

}  // namespace platform

#endif

// Names as the store keeps them: 16-bit units, the high byte first, so that the order of the bytes
// is the order of the units, and any unit at all can be part of a name.
#ifndef QX_PLATFORM_POSIX_REGISTRY_NAMES_H
#define QX_PLATFORM_POSIX_REGISTRY_NAMES_H

#include <string>
#include <string_view>

#include "platform/types.h"

namespace platform {

inline constexpr std::size_t kMaxKeyName = 255;
inline constexpr std::size_t kMaxValueName = 16383;

// The spelling, and the form that two names share if they differ by case only.
std::string StoredName(std::u16string_view name);
std::string FoldedName(std::u16string_view name);

// Writes the units of a stored name and a terminator. `capacity` counts units; false, and nothing
// written, if they do not fit.
bool CopyStoredName(std::string_view stored, char16_t* target, u32 capacity, u32* length) noexcept;

// Whether a stored name can be a component of a path.
bool IsStoredComponent(std::string_view stored) noexcept;

// Takes the next component off the front of a path; false behind the last. A null path has none.
bool TakeComponent(const char16_t*& path, std::u16string_view& component) noexcept;

inline bool HasComponent(const char16_t* path) noexcept {
    std::u16string_view component;
    return TakeComponent(path, component);
}

// Lengthens a folded path by one component.
void AppendFoldedComponent(std::string& path, std::u16string_view component);

// Lengthens a folded path by a whole path. False if a component is too long to exist.
bool AppendFoldedPath(std::string& path, const char16_t* more);

}  // namespace platform

#endif

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

// The units of a stored name, without a terminator.
void UnitsOfStoredName(std::string_view stored, char16_t* units) noexcept;

// The stored form of units, in the text's own memory if that is large enough; and less than, equal
// to or greater than 0 as the units come before, with or behind a stored name.
void AssignStoredName(std::string& stored, std::u16string_view units);
int CompareWithStored(std::u16string_view units, std::string_view stored) noexcept;

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

// A folded name, or a folded path without the separators that mean nothing, in the processor's own
// order of bytes. For names of a usual length; nothing is allocated.
class FoldedText {
  public:
    // False for a name that is too long, or null.
    bool SetName(std::u16string_view name) noexcept;
    bool SetPath(const char16_t* path) noexcept;

    std::u16string_view Get() const noexcept { return {m_units, m_length}; }

  private:
    static constexpr std::size_t kMost = 1024;

    bool Add(std::u16string_view name) noexcept;

    std::size_t m_length = 0;
    char16_t m_units[kMost];
};

}  // namespace platform

#endif

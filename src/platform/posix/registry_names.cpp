#include "registry_names.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace platform {
namespace {

constexpr char16_t kSeparator = u'\\';

// By the character tables of ICU, without a locale. A fold that leaves the 16 bits is none, and as
// on the reference platform only a letter that is the lower case of its upper case folds: a dotless
// i is no i.
char16_t FoldUnit(char16_t unit) noexcept {
    if (unit < 0x80) {
        return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - 0x20) : unit;
    }
    const UChar32 folded = u_toupper(unit);
    return folded < 0x10000 && u_tolower(folded) == unit ? static_cast<char16_t>(folded) : unit;
}

char16_t UnitAt(std::string_view stored, std::size_t offset) noexcept {
    const u32 high = static_cast<u8>(stored[offset]);
    return static_cast<char16_t>(high << 8 | static_cast<u8>(stored[offset + 1]));
}

char16_t SameUnit(char16_t unit) noexcept {
    return unit;
}

template <char16_t (*kMap)(char16_t) noexcept>
void Append(std::string& stored, std::u16string_view name) {
    std::size_t at = stored.size();
    stored.resize(at + 2 * name.size());
    for (char16_t unit : name) {
        unit = kMap(unit);
        stored[at++] = static_cast<char>(unit >> 8);
        stored[at++] = static_cast<char>(unit & 0xFF);
    }
}

}  // namespace

void AssignStoredName(std::string& stored, std::u16string_view units) {
    stored.clear();
    Append<SameUnit>(stored, units);
}

int CompareWithStored(std::u16string_view units, std::string_view stored) noexcept {
    const std::size_t common = std::min(units.size(), stored.size() / 2);
    for (std::size_t i = 0; i < common; ++i) {
        if (const int difference = units[i] - UnitAt(stored, 2 * i)) {
            return difference;
        }
    }
    return 2 * units.size() < stored.size() ? -1 : 2 * units.size() > stored.size();
}

std::string StoredName(std::u16string_view name) {
    std::string stored;
    Append<SameUnit>(stored, name);
    return stored;
}

std::string FoldedName(std::u16string_view name) {
    std::string stored;
    Append<FoldUnit>(stored, name);
    return stored;
}

bool IsStoredComponent(std::string_view stored) noexcept {
    for (std::size_t i = 0; i + 1 < stored.size(); i += 2) {
        const char16_t unit = UnitAt(stored, i);
        if (unit == 0 || unit == kSeparator) {
            return false;
        }
    }
    return !stored.empty() && stored.size() % 2 == 0 && stored.size() / 2 <= kMaxKeyName;
}

void UnitsOfStoredName(std::string_view stored, char16_t* units) noexcept {
    for (std::size_t i = 0; i + 1 < stored.size(); i += 2) {
        *units++ = UnitAt(stored, i);
    }
}

bool CopyStoredName(std::string_view stored, char16_t* target, u32 capacity, u32* length) noexcept {
    const std::size_t units = stored.size() / 2;
    if (units >= capacity) {
        return false;
    }
    UnitsOfStoredName(stored, target);
    target[units] = 0;
    *length = static_cast<u32>(units);
    return true;
}

bool TakeComponent(const char16_t*& path, std::u16string_view& component) noexcept {
    if (path == nullptr) {
        return false;
    }
    while (*path == kSeparator) {
        ++path;
    }
    const char16_t* const start = path;
    while (*path != 0 && *path != kSeparator) {
        ++path;
    }
    component = {start, path};
    return !component.empty();
}

void AppendFoldedComponent(std::string& path, std::u16string_view component) {
    Append<SameUnit>(path, {&kSeparator, 1});
    Append<FoldUnit>(path, component);
}

bool AppendFoldedPath(std::string& path, const char16_t* more) {
    std::u16string_view component;
    while (TakeComponent(more, component)) {
        if (component.size() > kMaxKeyName) {
            return false;
        }
        AppendFoldedComponent(path, component);
    }
    return true;
}

bool FoldedText::Add(std::u16string_view name) noexcept {
    if (name.size() > kMost - m_length) {
        return false;
    }
    char16_t* const target = m_units + m_length;
    u32 seen = 0;
    for (std::size_t i = 0; i < name.size(); ++i) {  // without a branch
        const u32 unit = name[i];
        seen |= unit;
        target[i] = static_cast<char16_t>(unit - (unit - u'a' < 26 ? 0x20 : 0));
    }
    if (seen >= 0x80) {
        std::transform(name.begin(), name.end(), target, FoldUnit);
    }
    m_length += name.size();
    return true;
}

bool FoldedText::SetName(std::u16string_view name) noexcept {
    m_length = 0;
    return Add(name);
}

bool FoldedText::SetPath(const char16_t* path) noexcept {
    m_length = 0;
    std::u16string_view component;
    while (TakeComponent(path, component)) {
        if (component.size() > kMaxKeyName || (m_length != 0 && !Add(u"\\")) || !Add(component)) {
            return false;
        }
    }
    return true;
}

}  // namespace platform

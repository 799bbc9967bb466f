#include "object_path.h"

#include <cstdio>
#include <cstring>
#include <type_traits>

#include "platform/types.h"

namespace platform {
namespace {

// A file's name has 255 bytes at most; the hash has to fit behind the beginning.
constexpr std::size_t kLongestPath = 230;
constexpr std::size_t kKeptOfLongName = 150;

constexpr bool StandsAsItIs(char32_t unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z') ||
           (unit >= '0' && unit <= '9') || unit == '-' || unit == '_' || unit == '.' || unit == ':';
}

// FNV-1a.
class NameHash {
  public:
    void Add(char32_t unit) noexcept { m_hash = (m_hash ^ unit) * kPrime; }

    void Format(char (&text)[40]) const noexcept {
        // Nothing else has a '~' in it.
        std::snprintf(text, sizeof text, "~%016llx%016llx",
                      static_cast<unsigned long long>(m_hash >> 64),
                      static_cast<unsigned long long>(m_hash));
    }

  private:
    __extension__ using Word = unsigned __int128;

    static constexpr Word kPrime = (Word{1} << 88) + 0x13B;
    Word m_hash = (Word{0x6C62272E07BB0142} << 64) + 0x62B821756295C58D;
};

}  // namespace

ObjectPath::ObjectPath(const char* name) noexcept {
    Build(name);
}

ObjectPath::ObjectPath(const char16_t* name) noexcept {
    Build(name);
}

void ObjectPath::Append(const char* text) noexcept {
    const std::size_t length = std::strlen(text);
    std::memcpy(m_text + m_length, text, length + 1);
    m_length += length;
}

template <typename Unit>
void ObjectPath::Build(const Unit* name) noexcept {
    Append("/dev/shm/w64qxcore6.");
    NameHash hash;
    bool whole = true;
    std::size_t kept = m_length;
    for (; *name != 0; ++name) {
        const char32_t unit = static_cast<std::make_unsigned_t<Unit>>(*name);
        hash.Add(unit);
        if (!whole) {
            continue;
        }
        char text[8];
        std::snprintf(text, sizeof text,
                      StandsAsItIs(unit) ? "%c"
                      : unit < 0x100     ? "%%%02X"
                                         : "%%u%04X",
                      static_cast<unsigned>(unit));
        Append(text);
        whole = m_length <= kLongestPath;
        kept = m_length <= kKeptOfLongName ? m_length : kept;
    }
    if (!whole) {
        char text[40];
        hash.Format(text);
        m_length = kept;
        Append(text);
    }
}

}  // namespace platform

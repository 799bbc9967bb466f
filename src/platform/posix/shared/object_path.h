// The file that an object's name stands for.
#ifndef QX_PLATFORM_POSIX_SHARED_OBJECT_PATH_H
#define QX_PLATFORM_POSIX_SHARED_OBJECT_PATH_H

#include <cstddef>

namespace platform {

// /dev/shm/w64qxcore6. and the name. Letters, digits and "-_.:" of the name stand as they are, any
// other unit as its hexadecimal number, so that different names are different files and no name
// leads out of the directory. A name that gets too long keeps its beginning, and a hash of 128 bits
// stands for the whole.
class ObjectPath {
  public:
    explicit ObjectPath(const char* name) noexcept;
    explicit ObjectPath(const char16_t* name) noexcept;

    const char* Text() const noexcept { return m_text; }

  private:
    template <typename Unit>
    void Build(const Unit* name) noexcept;
    void Append(const char* text) noexcept;

    char m_text[256];
    std::size_t m_length = 0;
};

}  // namespace platform

#endif

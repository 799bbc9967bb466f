// Paths and names of files: 16-bit units above, bytes on disk. See platform/files.h.
#ifndef QX_PLATFORM_POSIX_FILES_FILE_PATH_H
#define QX_PLATFORM_POSIX_FILES_FILE_PATH_H

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/types.h"

namespace platform {

// A path as the kernel takes it. No longer one than the kernel's limit is a path at all, so it
// stands in the object.
class FilePath {
  public:
    explicit FilePath(const char16_t* path) noexcept;

    // False, with the last error set, if no file can have the path.
    bool IsValid() const noexcept { return m_error == 0; }
    const char* Text() const noexcept { return m_text; }

  private:
    static constexpr std::size_t kLimit = 4096;

    u32 Convert(const char16_t* path) noexcept;

    u32 m_error;
    char m_text[kLimit];
};

// Appends a text in the form that paths have, but for `\`, which stays: names of files in it are
// those on disk. False for text that is none.
bool AppendBytes(std::u16string_view text, std::string& bytes);

// The units of a name or a path on disk, whose separators become `/`; no byte becomes more than
// one. Returns their number; there is no terminator.
std::size_t UnitsOfPath(const char* bytes, std::size_t length, char16_t* units) noexcept;

}  // namespace platform

#endif

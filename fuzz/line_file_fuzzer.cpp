// Lines of any file, through buffers of any size: never a unit behind the buffer, always an end,
// and the same text whatever the size.
#include <qxcore/line_file.h>
#include <sys/mman.h>
#include <unistd.h>

#include <memory>
#include <string>

#include "fuzz_input.h"

namespace {

std::u16string ReadAll(const std::string& path, int32_t size) {
    const auto buffer = std::make_unique<wchar[]>(static_cast<size_t>(size));
    UFILE* const file = QXFileOpenUTF16(path.c_str(), "r");
    FUZZ_REQUIRE(file != nullptr);
    std::u16string text;
    while (wchar* const line = QXFileGetLineUTF16(buffer.get(), size, file)) {
        FUZZ_REQUIRE(line == buffer.get());
        const std::u16string piece = line;
        FUZZ_REQUIRE(piece.size() < static_cast<size_t>(size));
        text += piece;
    }
    QXFileCloseUTF16(file);
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    FuzzInput input(bytes, size);
    const int32_t bufferSize = 2 + input.Take<uint8_t>();
    const std::string content = input.Rest<char>();
    const int file = ::memfd_create("lines", 0);
    FUZZ_REQUIRE(::write(file, content.data(), content.size()) ==
                 static_cast<ssize_t>(content.size()));
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    const std::u16string whole = ReadAll(path, 1 << 16);
    // A zero unit cuts what is behind it, which a smaller buffer gets as a piece of its own.
    if (content.find('\0') == std::string::npos) {
        FUZZ_REQUIRE(ReadAll(path, bufferSize) == whole);
    } else {
        ReadAll(path, bufferSize);
    }
    ::close(file);
    return 0;
}

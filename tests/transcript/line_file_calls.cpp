#include <qxcore/line_file.h>

#include <memory>

#include "support/temporary_directory.h"
#include "transcript/families.h"
#include "transcript/values.h"

namespace {

// Writes some lines over a file or behind it, and prints what is in the file then.
void Write(const std::string& path, Random& random, Line& line) {
    constexpr const char* kModes[] = {"w", "a", "w+", "wt", "ab", "r", ""};
    const char* const mode = random.Of(kModes);
    UFILE* const file = QXFileOpenUTF16(path.c_str(), mode);
    line.Add("mode", mode).Handle("file", file);
    for (uint32_t left = random.Below(4); left > 0 && file != nullptr && *mode != 'r'; --left) {
        const std::u16string text = WideText(random);
        line.Add("text", text).Add("units", QXFileWriteLineUTF16(text.c_str(), file));
    }
    QXFileCloseUTF16(file);
    const std::string bytes = ReadFile(path);
    line.Bytes("bytes", bytes.data(), bytes.size());
}
// Puts any units into the file, with a mark of either order or none, also cut in one.
void Put(const std::string& path, Random& random, Line& line) {
    constexpr const wchar* kEnds[] = {u"\n", u"\r\n", u"\r", u"\u2028", u"\u0085", u"\f", u""};
    constexpr size_t kHead[] = {0, 1, 1023, 1024, 2000};
    std::u16string text = random.OneIn(4) ? u"" : u"\uFEFF";
    text.append(random.Of(kHead), u'x');
    for (uint32_t left = random.Below(6); left > 0; --left) {
        text += WideText(random) + random.Of(kEnds);
    }
    const bool swaps = random.OneIn(2);
    std::string bytes;
    for (const char16_t unit : text) {
        bytes += static_cast<char>(swaps ? unit : unit >> 8);
        bytes += static_cast<char>(swaps ? unit >> 8 : unit);
    }
    bytes.resize(bytes.size() - std::min<size_t>(bytes.size(), random.OneIn(5)));
    WriteFile(path, bytes);
    line.Add("text", text).Add("swaps", swaps).Add("bytes", bytes.size());
}
void Read(const std::string& path, Random& random, Line& line) {
    constexpr int32_t kSizes[] = {2, 3, 7, 100, 1024, 4000};
    const int32_t size = random.Of(kSizes);
    UFILE* const file = QXFileOpenUTF16(path.c_str(), "r");
    line.Add("size", size).Handle("file", file);
    Buffer<wchar> buffer(static_cast<size_t>(size));
    while (file != nullptr && QXFileGetLineUTF16(buffer.Get(), size, file) != nullptr) {
        line.Add("line", std::u16string_view(buffer.Get()));
    }
    QXFileCloseUTF16(file);
}

}  // namespace

Calls LineFileCalls() {
    const auto directory = std::make_shared<TemporaryDirectory>();
    const auto with = [=](auto make) {
        return [=](Random& random, Line& line) {
            make((directory->Path() / "lines").string(), random, line);
        };
    };
    return {
        {"QXFileWriteLineUTF16", with(Write), 2},
        {"units of a file", with(Put), 2},
        {"QXFileGetLineUTF16", with(Read), 4},
    };
}

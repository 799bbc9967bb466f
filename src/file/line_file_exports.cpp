#include <qxcore/line_file.h>
#include <qxcore/string.h>

#include <cstdio>

#include "file/icu_streams.h"
#include "platform/streams.h"
#include "platform/types.h"

namespace {

constexpr wchar kLineEnd[] = {u'\r', u'\n'};
constexpr i32 kLineEndLength = 2;

// A runtime that translates line feeds would do so inside the units too.
void MakeBinaryMode(const char* mode, char (&binary)[16]) {
    size_t length = 0;
    for (const char* each = mode; *each != '\0' && length < sizeof binary - 2; ++each) {
        if (*each != 'b' && *each != 't') {
            binary[length++] = *each;
        }
        if (each == mode) {
            binary[length++] = 'b';
        }
    }
    binary[length] = '\0';
}

void CutLineEnd(wchar* line) {
    while (*line != u'\r' && *line != u'\n' && *line != 0) {
        ++line;
    }
    *line = 0;
}

}  // namespace

UFILE* QXFileOpenUTF16(const char* path, const char* mode) {
    if (!icu_streams::Bind()) {
        return nullptr;
    }
    char binary[16];
    MakeBinaryMode(mode, binary);
    std::FILE* const stream = platform::fopen(path, binary);
    if (stream == nullptr) {
        return nullptr;
    }
    UFILE* const file = icu_streams::Adopt(stream, static_cast<const char*>(nullptr), "UTF-16");
    if (file == nullptr) {
        std::fclose(stream);
    }
    return file;
}

void QXFileCloseUTF16(UFILE* file) {
    if (file != nullptr) {
        icu_streams::Close(file);
    }
}

wchar* QXFileGetLineUTF16(wchar* buffer, int32_t size, UFILE* file) {
    if (icu_streams::GetLine(buffer, size, file) == nullptr) {
        return nullptr;
    }
    CutLineEnd(buffer);
    return buffer;
}

int32_t QXFileWriteLineUTF16(const wchar* line, UFILE* file) {
    const i32 length = static_cast<i32>(QXStrLenW(line));
    return icu_streams::Write(line, length, file) +
           icu_streams::Write(kLineEnd, kLineEndLength, file);
}

#include <qxcore/transform.h>

#include <cstring>

#include "platform/common/utf_run.h"
#include "platform/multibyte.h"
#include "text/unit_scan.h"

namespace {

size_t LengthInUnits(const char* source) {
    const size_t ascii = unit_scan::FindNotAscii(source);
    return source[ascii] != 0 ? ascii + platform::mbstowcs(nullptr, source + ascii, 0) : ascii;
}

}  // namespace

// A failure of the runtime's conversion, all ones, goes into the sum as it is.
size_t QXAnsiToUnicode(wchar* target, const char* source, size_t limit) {
    if (target == nullptr) {
        return LengthInUnits(source);
    }
    const size_t length = strnlen(source, limit);
    const size_t ascii = platform::ConvertAsciiRun(source, length, target);
    if (ascii < length) {
        return ascii + platform::mbstowcs(target + ascii, source + ascii, limit - ascii);
    }
    if (length < limit) {
        target[length] = 0;
    }
    return length;
}

size_t QXUnicodeToAnsi(char* target, const wchar* source, size_t limit) {
    return platform::wcstombs(target, source, limit);
}

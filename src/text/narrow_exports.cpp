#include <qxcore/transform.h>

#include "platform/multibyte.h"

namespace {

bool IsAscii(char byte) {
    return static_cast<unsigned char>(byte) < 0x80;
}

size_t LengthInUnits(const char* source) {
    size_t count = 0;
    for (; IsAscii(source[count]); ++count) {
        if (source[count] == '\0') {
            return count;
        }
    }
    return count + platform::mbstowcs(nullptr, source + count, 0);
}

}  // namespace

// A failure of the runtime's conversion, all ones, goes into the sum as it is.
size_t QXAnsiToUnicode(wchar* target, const char* source, size_t limit) {
    if (target == nullptr) {
        return LengthInUnits(source);
    }
    for (size_t count = 0; count < limit; ++count) {
        if (!IsAscii(source[count])) {
            return count + platform::mbstowcs(target + count, source + count, limit - count);
        }
        target[count] = static_cast<wchar>(source[count]);
        if (source[count] == '\0') {
            return count;
        }
    }
    return limit;
}

// Formatted wide text with what the formatter told of it.
#ifndef QX_TESTS_SUPPORT_WIDE_FORMAT_H
#define QX_TESTS_SUPPORT_WIDE_FORMAT_H

#include <cstdarg>
#include <cstddef>
#include <string>

#include "platform/crt_text.h"

struct Formatted {
    int m_result;
    std::u16string m_text;

    bool operator==(const Formatted&) const = default;
};

// Into a heap block of exactly `size` units. Units that were not written do not count.
inline Formatted FormatInto(size_t size, const char16_t* format, ...) {
    std::u16string buffer(size, u'\xFFFF');
    buffer.shrink_to_fit();
    std::va_list arguments;
    va_start(arguments, format);
    const int result = platform::_vsnwprintf(buffer.data(), size, format, arguments);
    va_end(arguments);
    return {result, buffer.substr(0, buffer.find(u'\xFFFF'))};
}

#endif

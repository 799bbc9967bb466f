// Formatted wide text in buffers of a fixed size.
#ifndef QX_CORE_WIDE_FORMAT_H
#define QX_CORE_WIDE_FORMAT_H

#include <qxcore/base.h>

#include <cstdarg>
#include <cstddef>

#include "platform/crt_text.h"

// Text that is longer than the buffer is cut.
template <std::size_t Size>
void FormatList(wchar (&buffer)[Size], const wchar* format, std::va_list arguments) noexcept {
    platform::_vsnwprintf(buffer, Size, format, arguments);
    buffer[Size - 1] = 0;
}

template <std::size_t Size>
void Format(wchar (&buffer)[Size], const wchar* format, ...) noexcept {
    std::va_list arguments;
    va_start(arguments, format);
    FormatList(buffer, format, arguments);
    va_end(arguments);
}

#endif

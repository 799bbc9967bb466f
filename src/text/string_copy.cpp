// Copy and concatenate.
#include <qxcore/string.h>
#include <string.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>

#include "platform/types.h"
#include "text/unit_scan.h"

namespace {

// The C library's bounded copies are not called where a size of 0 may stand for "unbounded": their
// checked variants would stop the program. The wide ones do not exist for 16-bit units.

std::size_t LengthWithin(const char* text, std::size_t limit) {
    return ::strnlen(text, limit);
}

std::size_t LengthWithin(const char16_t* text, std::size_t limit) {
    return unit_scan::FindEnd(text, limit);
}

// Works like a loop from the first unit on, also where the target overlaps the source from below.
template <typename Unit>
void Move(Unit* target, const Unit* source, std::size_t count) {
    std::memmove(target, source, count * sizeof(Unit));
}

// The ways to put `count` units of a source at an address, without a terminator behind them.

struct CopyAndFill {
    template <typename Unit>
    void operator()(Unit* target, const Unit* source, std::size_t count) const {
        const std::size_t length = LengthWithin(source, count);
        Move(target, source, length);
        std::fill(target + length, target + count, Unit{});
    }
};

struct CopyUTF16 {
    void operator()(char16_t* target, const char16_t* source, std::size_t count) const {
        u_strncpy(target, source, static_cast<i32>(count));
    }
};

// Indexes are signed here: with a size of 0 the terminator goes in front of the target.
template <typename Unit>
Unit* At(Unit* target, std::size_t index) {
    return target + static_cast<std::ptrdiff_t>(index);
}

template <typename Unit, typename Copy>
Unit* BoundedCopy(Unit* target, std::size_t size, const Unit* source, std::size_t count,
                  Copy copy) {
    const std::size_t length = std::min(size - 1, count);
    copy(target, source, length);
    *At(target, length) = 0;
    return target;
}

template <typename Unit, typename Copy>
Unit* BoundedConcatenate(Unit* target, std::size_t size, const Unit* source, std::size_t count,
                         Copy copy) {
    std::size_t position = LengthWithin(target, size);
    if (position == size) {
        position = size - 1;
    }
    const std::size_t length = std::min(size - position - 1, count);
    Unit* const begin = At(target, position);
    copy(begin, source, length);
    *At(begin, length) = 0;
    return begin;
}

// Writes the texts without a terminator and gives the address behind them.
char* CopyList(char* target, i32 numberOfStrings, va_list strings) {
    for (i32 index = 0; index < numberOfStrings; ++index) {
        const char* const text = va_arg(strings, const char*);
        const std::size_t length = text != nullptr ? std::strlen(text) : 0;
        target = std::copy_n(text, length, target);
    }
    return target;
}

}  // namespace

char* QXStrCpyA(char* target, const char* source) {
    return unit_scan::Copy(target, source);
}

wchar* QXStrCpyW(wchar* target, const wchar* source) {
    return unit_scan::Copy(target, source);
}

char* QXStrCatA(char* target, const char* source) {
    QXStrCpyA(target + std::strlen(target), source);
    return target;
}

wchar* QXStrCatW(wchar* target, const wchar* source) {
    QXStrCpyW(target + unit_scan::FindEnd(target), source);
    return target;
}

char* QXStrNCpyA(char* target, const char* source, size_t count) {
    return std::strncpy(target, source, count);
}

wchar* QXStrNCpyW(wchar* target, const wchar* source, size_t count) {
    CopyAndFill()(target, source, count);
    return target;
}

char* QXStrNCatA(char* target, const char* source, size_t count) {
    return std::strncat(target, source, count);
}

wchar* QXStrNCatW(wchar* target, const wchar* source, size_t count) {
    const std::size_t length = unit_scan::FindEnd(source, count);
    wchar* const begin = target + unit_scan::FindEnd(target);
    Move(begin, source, length);
    begin[length] = 0;
    return target;
}

char* QXStrNZCpyA(char* target, size_t targetSize, const char* source, size_t count) {
    return BoundedCopy(target, targetSize, source, count, CopyAndFill());
}

wchar* QXStrNZCpyW(wchar* target, size_t targetSize, const wchar* source, size_t count) {
    return BoundedCopy(target, targetSize, source, count, CopyAndFill());
}

void QXStrNZCpyUTF16(wchar* target, size_t targetSize, const wchar* source, size_t count) {
    BoundedCopy(target, targetSize, source, count, CopyUTF16());
}

char* QXStrNZCatA(char* target, size_t targetSize, const char* source, size_t count) {
    return BoundedConcatenate(target, targetSize, source, count, CopyAndFill());
}

wchar* QXStrNZCatW(wchar* target, size_t targetSize, const wchar* source, size_t count) {
    return BoundedConcatenate(target, targetSize, source, count, CopyAndFill());
}

void QXStrNZCatUTF16(wchar* target, size_t targetSize, const wchar* source, size_t count) {
    BoundedConcatenate(target, targetSize, source, count, CopyUTF16());
}

int32_t QXStrCpyCatA(char* target, int32_t numberOfStrings, ...) {
    if (target == nullptr) {
        return 0;
    }
    *target = 0;
    va_list strings;
    va_start(strings, numberOfStrings);
    char* const end = CopyList(target, numberOfStrings, strings);
    va_end(strings);
    *end = 0;
    return static_cast<i32>(end - target);
}

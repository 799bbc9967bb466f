// Length, duplicate and release.
#include <qxcore/string.h>
#include <string.h>

#include <cstring>
#include <new>

#include "platform/types.h"
#include "text/unit_scan.h"

namespace {

std::size_t LengthOf(const char* text) {
    return std::strlen(text);
}

std::size_t LengthOf(const char16_t* text) {
    return unit_scan::FindEnd(text);
}

std::size_t LengthOf(const char* text, std::size_t limit) {
    return limit != 0 ? ::strnlen(text, limit) : 0;
}

std::size_t LengthOf(const char16_t* text, std::size_t limit) {
    return unit_scan::FindEnd(text, limit);
}

// A size that does not fit asks for more than there is, so that it fails as any other.
template <typename Unit>
Unit* NewBlock(std::size_t length) {
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(length + 1, sizeof(Unit), &bytes)) {
        bytes = SIZE_MAX;
    }
    return static_cast<Unit*>(::operator new(bytes));
}

template <typename Unit>
Unit* Duplicate(const Unit* text, std::size_t length) {
    auto* const block = NewBlock<Unit>(length);
    std::memcpy(block, text, length * sizeof(Unit));
    block[length] = 0;
    return block;
}

template <typename Unit>
Unit* Duplicate(const Unit* text) {
    return text != nullptr ? Duplicate(text, LengthOf(text)) : nullptr;
}

template <typename Unit>
Unit* DuplicateHead(const Unit* text, std::size_t limit) {
    return text != nullptr ? Duplicate(text, LengthOf(text, limit)) : nullptr;
}

}  // namespace

size_t QXStrLenA(const char* text) {
    return LengthOf(text);
}

size_t QXStrLenA_32(const char* text) {
    return LengthOf(text);
}

size_t QXStrLenW(const wchar* text) {
    return LengthOf(text);
}

size_t QXStrLenW_32(const wchar* text) {
    return LengthOf(text);
}

int64_t QXStrLenUTF16(const wchar* text) {
    return static_cast<i32>(LengthOf(text));
}

size_t QXStrNLenA(const char* text, size_t limit) {
    return LengthOf(text, limit);
}

size_t QXStrNLenW(const wchar* text, size_t limit) {
    return LengthOf(text, limit);
}

size_t QXStrNLenUTF16(const wchar* text, size_t limit) {
    return LengthOf(text, limit);
}

char* QXStrDupA(const char* text) {
    return Duplicate(text);
}

wchar* QXStrDupW(const wchar* text) {
    return Duplicate(text);
}

char* QXStrNDupA(const char* text, uint32_t limit) {
    return DuplicateHead(text, limit);
}

wchar* QXStrNDupW(const wchar* text, uint32_t limit) {
    return DuplicateHead(text, limit);
}

void QXStrFreeA(char* block) {
    ::operator delete(block);
}

void QXStrFreeW(wchar* block) {
    ::operator delete(block);
}

// Numbers from text and text from numbers.
#include <qxcore/string.h>

#include <cstdlib>

#include "platform/crt_text.h"

int32_t QXStrToIA(const char* text) {
    return platform::atoi(text);
}

int32_t QXStrToIW(const wchar* text) {
    return platform::_wtoi(text);
}

int64_t QXStrToI64W(const wchar* text) {
    return platform::_wtoi64(text);
}

int32_t QXStrToLA(const char* text, char** end, int32_t radix) {
    return platform::strtol(text, end, radix);
}

int32_t QXStrToLW(const wchar* text, wchar** end, int32_t radix) {
    return platform::wcstol(text, end, radix);
}

int64_t QXStrToLLA(const char* text, char** end, int32_t radix) {
    return platform::strtoll(text, end, radix);
}

int64_t QXStrToLLW(const wchar* text, wchar** end, int32_t radix) {
    return platform::wcstoll(text, end, radix);
}

uint32_t QXStrToULA(const char* text, char** end, int32_t radix) {
    return platform::strtoul(text, end, radix);
}

uint32_t QXStrToULW(const wchar* text, wchar** end, int32_t radix) {
    return platform::wcstoul(text, end, radix);
}

uint64_t QXStrToULLA(const char* text, char** end, int32_t radix) {
    return platform::strtoull(text, end, radix);
}

double QXStrToDA(const char* text, char** end) {
    return std::strtod(text, end);
}

double QXStrToDW(const wchar* text, wchar** end) {
    return platform::wcstod(text, end);
}

char* QXLToStrA(int32_t value, char* buffer, int32_t radix) {
    return platform::_ltoa(value, buffer, radix);
}

wchar* QXLToStrW(int32_t value, wchar* buffer, int32_t radix) {
    return platform::_ltow(value, buffer, radix);
}

char* QXInt64ToStrA(int64_t value, char* buffer, int32_t radix) {
    return platform::_i64toa(value, buffer, radix);
}

wchar* QXInt64ToStrW(int64_t value, wchar* buffer, int32_t radix) {
    return platform::_i64tow(value, buffer, radix);
}

#include <qxcore/string.h>

#include <algorithm>
#include <string>

size_t QXStrLenW(const wchar* text) {
    return std::char_traits<wchar>::length(text);
}

wchar* QXStrCpyW(wchar* target, const wchar* source) {
    std::copy_n(source, QXStrLenW(source) + 1, target);
    return target;
}

wchar* QXStrCatW(wchar* target, const wchar* source) {
    QXStrCpyW(target + QXStrLenW(target), source);
    return target;
}

wchar* QXStrNCpyW(wchar* target, const wchar* source, size_t count) {
    const wchar* const end = std::find(source, source + count, u'\0');
    std::fill(std::copy(source, end, target), target + count, u'\0');
    return target;
}

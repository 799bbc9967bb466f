// Search and tokens.
#include <qxcore/string.h>
#include <unicode/ustring.h>

#include <cstring>

#include "platform/types.h"
#include "text/unit_scan.h"

namespace {

// Whether the text begins with the sought one.
bool BeginsWith(const char16_t* text, const char16_t* sought) {
    return sought[unit_scan::FindDifference(text, sought)] == 0;
}

const char16_t* FindText(const char16_t* text, const char16_t* sought) {
    if (*sought == 0) {
        return text;
    }
    while ((text = unit_scan::FindUnit(text, *sought)) != nullptr && !BeginsWith(text, sought)) {
        ++text;
    }
    return text;
}

template <typename Unit>
bool IsAmong(Unit unit, const Unit* delimiters) {
    while (*delimiters != 0 && *delimiters != unit) {
        ++delimiters;
    }
    return *delimiters != 0;
}

template <typename Unit>
Unit* NextToken(Unit** cursor, const Unit* delimiters) {
    Unit* token = *cursor;
    if (token == nullptr) {
        return nullptr;
    }
    while (*token != 0 && IsAmong(*token, delimiters)) {
        ++token;
    }
    Unit* end = token;
    while (*end != 0 && !IsAmong(*end, delimiters)) {
        ++end;
    }
    const bool isLast = *end == 0;
    if (!isLast) {
        *end = 0;
    }
    *cursor = isLast ? nullptr : end + 1;
    return end != token ? token : nullptr;
}

}  // namespace

char* QXStrChrA(const char* text, char unit) {
    return const_cast<char*>(std::strchr(text, unit));
}

wchar* QXStrChrW(const wchar* text, wchar unit) {
    return const_cast<wchar*>(unit_scan::FindUnit(text, unit));
}

wchar* QXStrChrUCS2(const wchar* text, wchar unit) {
    return u_strchr(text, unit);
}

wchar* QXStrChrUTF16(const wchar* text, uint32_t codePoint) {
    return u_strchr32(text, static_cast<UChar32>(codePoint));
}

char* QXStrRChrA(const char* text, char unit) {
    return const_cast<char*>(std::strrchr(text, unit));
}

wchar* QXStrRChrW(const wchar* text, wchar unit) {
    return const_cast<wchar*>(unit_scan::FindLast(text, unit));
}

wchar* QXStrRChrUCS2(const wchar* text, wchar unit) {
    return u_strrchr(text, unit);
}

wchar* QXStrRChrUTF16(const wchar* text, uint32_t codePoint) {
    return u_strrchr32(text, static_cast<UChar32>(codePoint));
}

char* QXStrStrA(const char* text, const char* sought) {
    return const_cast<char*>(std::strstr(text, sought));
}

wchar* QXStrStrW(const wchar* text, const wchar* sought) {
    return const_cast<wchar*>(FindText(text, sought));
}

wchar* QXStrStrUTF16(const wchar* text, const wchar* sought) {
    return u_strstr(text, sought);
}

char* QXStrTokA(char** cursor, const char* delimiters) {
    return NextToken(cursor, delimiters);
}

wchar* QXStrTokW(wchar** cursor, const wchar* delimiters) {
    return NextToken(cursor, delimiters);
}

#include <qxcore/guid.h>
#include <qxcore/string.h>
#include <qxcore/transform.h>

#include <cstring>

#include "platform/errors.h"
#include "platform/identifiers.h"
#include "platform/types.h"

namespace {

constexpr size_t kBareTextLength = 36;
constexpr size_t kBracedTextLength = 38;

// The byte offsets in the order of their weight.
constexpr u8 kComparedOffsets[] = {10, 11, 12, 13, 14, 15, 8, 9, 6, 7, 4, 5, 0, 1, 2, 3};

// The byte offsets in the order of the text.
constexpr u8 kDash = 0xFF;
constexpr u8 kPrintedOffsets[] = {
    3, 2, 1,     0,  kDash,                  // Data1
    5, 4, kDash,                             // Data2
    7, 6, kDash,                             // Data3
    8, 9, kDash, 10, 11,    12, 13, 14, 15,  // Data4
};
constexpr char kDigits[] = "0123456789ABCDEF";

int HexDigitValue(wchar digit) {
    if (digit >= u'0' && digit <= u'9') {
        return digit - u'0';
    }
    if (digit >= u'A' && digit <= u'F') {
        return digit - u'A' + 10;
    }
    if (digit >= u'a' && digit <= u'f') {
        return digit - u'a' + 10;
    }
    return -1;
}

// Reads four digits.
bool ParseGroup(const wchar* text, u16* value) {
    unsigned sum = 0;
    for (int index = 0; index < 4; ++index) {
        const int digit = HexDigitValue(text[index]);
        if (digit < 0) {
            return false;
        }
        sum = sum << 4 | static_cast<unsigned>(digit);
    }
    *value = static_cast<u16>(sum);
    return true;
}

bool ParseGroups(const wchar* text, u16 (&groups)[8]) {
    u16* group = groups;
    for (const char element : "HHDHDHDHDHHH") {
        if (element == 'H') {
            if (!ParseGroup(text, group++)) {
                return false;
            }
            text += 4;
        } else if (element == 'D' && *text++ != u'-') {
            return false;
        }
    }
    return true;
}

GUID GuidFromGroups(const u16 (&groups)[8]) {
    GUID guid;
    guid.Data1 = static_cast<u32>(groups[0]) << 16 | groups[1];
    guid.Data2 = groups[2];
    guid.Data3 = groups[3];
    for (std::size_t index = 0; index < 4; ++index) {
        guid.Data4[2 * index] = static_cast<u8>(groups[4 + index] >> 8);
        guid.Data4[2 * index + 1] = static_cast<u8>(groups[4 + index]);
    }
    return guid;
}

// Writes the text between the braces; returns its end.
char* PrintBytes(const u8* bytes, char* text) {
    for (const u8 offset : kPrintedOffsets) {
        if (offset == kDash) {
            *text++ = '-';
        } else {
            *text++ = kDigits[bytes[offset] >> 4];
            *text++ = kDigits[bytes[offset] & 0xF];
        }
    }
    return text;
}

}  // namespace

int32_t QXComIsEqualGUID(const GUID* left, const GUID* right) {
    return std::memcmp(left, right, sizeof(GUID)) == 0;
}

int32_t QXComCompareGUID(const GUID* left, const GUID* right) {
    const auto* const leftBytes = reinterpret_cast<const u8*>(left);
    const auto* const rightBytes = reinterpret_cast<const u8*>(right);
    for (const u8 offset : kComparedOffsets) {
        if (leftBytes[offset] != rightBytes[offset]) {
            return leftBytes[offset] > rightBytes[offset] ? 1 : -1;
        }
    }
    return 0;
}

QXResult QXComGUIDFromString(const wchar* text, GUID* guid) {
    const size_t length = QXStrLenW(text);
    if (length < kBareTextLength) {
        return QX_E_INVALIDARG;
    }
    if (text[0] == u'{') {
        if (length < kBracedTextLength || text[kBracedTextLength - 1] != u'}') {
            return QX_E_INVALIDARG;
        }
        ++text;
    }
    u16 groups[8];
    if (!ParseGroups(text, groups)) {
        return QX_E_INVALIDARG;
    }
    const GUID parsed = GuidFromGroups(groups);
    std::memcpy(guid, &parsed, sizeof parsed);
    return QX_S_OK;
}

QXResult QXComStringFromGUID(const GUID* guid, wchar* buffer, int32_t length) {
    char text[QX_GUID_TEXT_SIZE] = "{";
    *PrintBytes(reinterpret_cast<const u8*>(guid), text + 1) = '}';
    QXAnsiToUnicode(buffer, text, static_cast<size_t>(length));
    return QX_S_OK;
}

QXResult QXComGenerateGUID(GUID* guid) {
    return platform::UuidCreate(guid) == platform::kErrorUuidNoAddress ? QX_E_FAIL : QX_S_OK;
}

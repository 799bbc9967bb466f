#include <qxcore/guid.h>
#include <qxcore/string.h>
#include <qxcore/transform.h>

#include <cstdio>
#include <cstring>

#include "platform/errors.h"
#include "platform/identifiers.h"
#include "platform/types.h"

namespace {

constexpr size_t kBareTextLength = 36;
constexpr size_t kBracedTextLength = 38;

// The byte offsets in the order of their weight.
constexpr u8 kComparedOffsets[] = {10, 11, 12, 13, 14, 15, 8, 9, 6, 7, 4, 5, 0, 1, 2, 3};

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
    GUID value;
    std::memcpy(&value, guid, sizeof value);
    char text[QX_GUID_TEXT_SIZE];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned>(value.Data1), value.Data2, value.Data3, value.Data4[0],
                  value.Data4[1], value.Data4[2], value.Data4[3], value.Data4[4], value.Data4[5],
                  value.Data4[6], value.Data4[7]);
    QXAnsiToUnicode(buffer, text, static_cast<size_t>(length));
    return QX_S_OK;
}

QXResult QXComGenerateGUID(GUID* guid) {
    return platform::UuidCreate(guid) == platform::kErrorUuidNoAddress ? QX_E_FAIL : QX_S_OK;
}

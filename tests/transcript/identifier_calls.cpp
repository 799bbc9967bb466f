#include <qxcore/guid.h>

#include <cstring>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

GUID AnyIdentifier(Random& random) {
    GUID guid = {};
    const uint64_t words[2] = {random.Next(), random.Next()};
    if (!random.OneIn(8)) {
        std::memcpy(&guid, words, sizeof guid);
    }
    return guid;
}

void Show(const char* what, const GUID& guid, Line& line) {
    line.Bytes(what, &guid, sizeof guid);
}

// The same, or with one other byte.
GUID Other(Random& random, GUID guid) {
    const uint32_t byte = random.Below(20);
    if (byte < sizeof guid) {
        reinterpret_cast<uint8_t*>(&guid)[byte] ^= static_cast<uint8_t>(random.Between(1, 0xFF));
    }
    return guid;
}

MakeCall Compare(int32_t (*compare)(const GUID*, const GUID*)) {
    return [compare](Random& random, Line& line) {
        const GUID left = AnyIdentifier(random);
        const GUID right = Other(random, left);
        Show("left", left, line);
        Show("right", right, line);
        line.Add("->", compare(&left, &right));
    };
}

void WriteText(Random& random, Line& line) {
    const GUID guid = AnyIdentifier(random);
    const int32_t length = random.OneIn(2) ? QX_GUID_TEXT_SIZE : random.Below(42);
    Buffer<wchar> buffer(42);
    Show("guid", guid, line);
    line.Add("length", length).Result(QXComStringFromGUID(&guid, buffer.Begin(), length));
    line.Add("buffer", buffer.Content());
}

std::u16string IdentifierText(Random& random) {
    const GUID guid = AnyIdentifier(random);
    wchar buffer[QX_GUID_TEXT_SIZE];
    QXComStringFromGUID(&guid, buffer, QX_GUID_TEXT_SIZE);
    std::u16string text = buffer;
    if (random.OneIn(3)) {
        text = text.substr(1, 36);
    }
    while (random.OneIn(2)) {
        text = Variation(random, text);
    }
    return text;
}

void ReadText(Random& random, Line& line) {
    const std::u16string text = IdentifierText(random);
    GUID guid = {0x7E7E7E7E, 0x7E7E, 0x7E7E, {}};
    line.Add("text", text).Result(QXComGUIDFromString(text.c_str(), &guid));
    Show("guid", guid, line);
}

// Of a new identifier the kind is known, and that no two are the same.
void Generate(Random&, Line& line) {
    GUID guids[2] = {};
    line.Result(QXComGenerateGUID(&guids[0])).Result(QXComGenerateGUID(&guids[1]));
    line.Add("version", guids[0].Data3 >> 12).Add("variant", guids[0].Data4[0] >> 6);
    line.Add("same", QXComIsEqualGUID(&guids[0], &guids[1]));
}

}  // namespace

std::vector<Call> IdentifierCalls() {
    return {
        {"QXComIsEqualGUID", Compare(QXComIsEqualGUID)},
        {"QXComCompareGUID", Compare(QXComCompareGUID)},
        {"QXComStringFromGUID", WriteText},
        {"QXComGUIDFromString", ReadText},
        {"QXComGenerateGUID", Generate},
    };
}

void PrintIdentifiers() {
    Line("GUID")
        .Add("size", sizeof(GUID))
        .Add("Data1", offsetof(GUID, Data1))
        .Add("Data2", offsetof(GUID, Data2))
        .Add("Data3", offsetof(GUID, Data3))
        .Add("Data4", offsetof(GUID, Data4));
}

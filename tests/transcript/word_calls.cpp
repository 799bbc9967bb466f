#include <qxcore/atomic.h>
#include <qxcore/bytes.h>
#include <qxcore/memory.h>
#include <qxcore/result.h>

#include "transcript/calls.h"

namespace {

// ---- Kinds

constexpr auto kFew = Within<0, 2>;

GUID AnyIdentifier(Random& random) {
    GUID guid = {};
    const uint64_t words[2] = {random.Next(), random.Next()};
    if (!random.OneIn(8)) {
        std::memcpy(&guid, words, sizeof guid);
    }
    return guid;
}

// The same, or with one other byte.
GUID OtherIdentifier(Random& random, const Draft& draft) {
    GUID guid = draft.identifier;
    const uint32_t byte = random.Below(20);
    if (byte < sizeof guid) {
        reinterpret_cast<uint8_t*>(&guid)[byte] ^= static_cast<uint8_t>(random.Between(1, 0xFF));
    }
    return guid;
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

int32_t IdentifierRoom(Random& random) {
    return random.OneIn(2) ? QX_GUID_TEXT_SIZE : static_cast<int32_t>(random.Below(42));
}

uint16_t Near(Random& random, uint32_t first, uint32_t last) {
    return static_cast<uint16_t>(random.OneIn(12) ? random.Next() : random.Between(first, last));
}

QXTimeRecord AnyRecord(Random& random) {
    return {Near(random, 1969, 2040), Near(random, 0, 13), Near(random, 0, 7),
            Near(random, 0, 32),      Near(random, 0, 24), Near(random, 0, 60),
            Near(random, 0, 61),      Near(random, 0, 999)};
}

int64_t AnySeconds(Random& random) {
    constexpr int64_t kYear3000 = 32535215999;
    return random.OneIn(3) ? AnyNumber<int64_t>(random)
                           : static_cast<int64_t>(random.Next() % (kYear3000 + 2)) - 1;
}

tm AnyTm(Random& random) {
    tm time = {};
    for (int* const field : {&time.tm_sec, &time.tm_min, &time.tm_hour, &time.tm_mday, &time.tm_mon,
                             &time.tm_year, &time.tm_wday}) {
        *field = random.OneIn(3) ? AnyNumber<int32_t>(random) % 0x7FFFFFF
                                 : static_cast<int>(random.Below(61));
    }
    return time;
}

// ---- Functions that need something round them

template <typename Word>
auto Unaligned(Word (*get)(const void*), void* (*put)(void*, Word)) {
    return [=](Random& random, Line& line) {
        Buffer<char> buffer(16);
        char* const address = buffer.Get() + random.Below(8);
        const auto value = AnyNumber<Word>(random);
        line.Add("value", value);
        line.Place("->", static_cast<char*>(put(address, value)), buffer.Get());
        line.Add("buffer", buffer.Content()).Add("->", get(address));
    };
}

// Of a new identifier the kind is known, and that no two are the same.
void Generate(Random&, Line& line) {
    GUID guids[2] = {};
    line.Result(QXComGenerateGUID(&guids[0])).Result(QXComGenerateGUID(&guids[1]));
    line.Add("version", guids[0].Data3 >> 12).Add("variant", guids[0].Data4[0] >> 6);
    line.Add("same", QXComIsEqualGUID(&guids[0], &guids[1]));
}

}  // namespace

Calls WordCalls() {
    constexpr auto kAny32 = AnyNumber<uint32_t>;
    constexpr auto kAnySize = AnyNumber<size_t>;
    return {
        {NAMED(QXAtomicAdd32, kAny32, kAny32)},
        {NAMED(QXAtomicAddSZ, kAnySize, kAnySize)},
        {NAMED(QXAtomicIncrement, kAny32)},
        {NAMED(QXAtomicDecrement, kAny32)},
        {NAMED(QXAtomicExchange, kAny32, kAny32)},
        {NAMED(QXAtomicCompareExchange, kFew, kAny32, kFew)},
        {"QXPutUnalignedInt16", Unaligned(QXGetUnalignedInt16, QXPutUnalignedInt16)},
        {"QXPutUnalignedInt32", Unaligned(QXGetUnalignedInt32, QXPutUnalignedInt32)},
        {"QXPutUnalignedInt64", Unaligned(QXGetUnalignedInt64, QXPutUnalignedInt64)},
        {NAMED(QXSwapInt16, AnyNumber<uint16_t>)},
        {NAMED(QXSwapInt32, kAny32)},
        {NAMED(QXSwapInt64, AnyNumber<uint64_t>)},
        {NAMED(QXGetAlignedSize, kAnySize)},
        {NAMED(QXResultFromNative, kAny32)},
        {NAMED(QXComIsEqualGUID, AnyIdentifier, OtherIdentifier)},
        {NAMED(QXComCompareGUID, AnyIdentifier, OtherIdentifier)},
        {NAMED(QXComStringFromGUID, AnyIdentifier, RoomFor<wchar, 42>, IdentifierRoom)},
        {NAMED(QXComGUIDFromString, IdentifierText, Unset<GUID>)},
        {"QXComGenerateGUID", Generate},
        {NAMED(QXTimeFromPosix, AnySeconds, Unset<QXTimeRecord>)},
        {NAMED(QXTimeToPosix, AnyRecord, Unset<int64_t>)},
        {NAMED(QXTimeFromTM, AnyTm, Unset<QXTimeRecord>)},
        {NAMED(QXTimeToTM, AnyRecord, Unset<tm>)},
    };
}

void PrintWords() {
    for (uint32_t number = 0; number < 2000; ++number) {
        Line("QXResultFromNative").Add("number", number).Result(QXResultFromNative(number));
    }
}

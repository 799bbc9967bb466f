#include <qxcore/atomic.h>
#include <qxcore/bytes.h>
#include <qxcore/memory.h>
#include <qxcore/result.h>

#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

template <typename Word>
MakeCall Update(Word (*update)(Word*, Word)) {
    return [update](Random& random, Line& line) {
        auto word = AnyNumber<Word>(random);
        const auto value = AnyNumber<Word>(random);
        line.Add("word", word).Add("value", value).Add("->", update(&word, value));
        line.Add("word", word);
    };
}

MakeCall Step(uint32_t (*step)(uint32_t*)) {
    return [step](Random& random, Line& line) {
        auto word = AnyNumber<uint32_t>(random);
        line.Add("word", word).Add("->", step(&word)).Add("word", word);
    };
}

void CompareExchange(Random& random, Line& line) {
    auto word = AnyNumber<uint32_t>(random);
    const auto exchange = AnyNumber<uint32_t>(random);
    const uint32_t comparand = random.OneIn(2) ? word : AnyNumber<uint32_t>(random);
    line.Add("word", word).Add("exchange", exchange).Add("comparand", comparand);
    line.Add("->", QXAtomicCompareExchange(&word, exchange, comparand)).Add("word", word);
}

template <typename Word>
MakeCall Unaligned(Word (*get)(const void*), void* (*put)(void*, Word)) {
    return [=](Random& random, Line& line) {
        Buffer<char> buffer(16);
        char* const address = buffer.Begin() + random.Below(8);
        const auto value = AnyNumber<Word>(random);
        line.Add("value", value);
        line.Place("->", static_cast<char*>(put(address, value)), buffer.Begin());
        line.Add("buffer", buffer.Content()).Add("->", get(address));
    };
}

template <typename Word>
MakeCall Swap(Word (*swap)(Word)) {
    return [swap](Random& random, Line& line) {
        const auto value = AnyNumber<Word>(random);
        line.Add("value", value).Add("->", swap(value));
    };
}

void AlignedSize(Random& random, Line& line) {
    const auto size = AnyNumber<size_t>(random);
    line.Add("size", size).Add("->", QXGetAlignedSize(size));
}

void ResultFromNative(Random& random, Line& line) {
    const auto number = AnyNumber<uint32_t>(random);
    line.Add("number", number).Result(QXResultFromNative(number));
}

}  // namespace

std::vector<Call> WordCalls() {
    return {
        {"QXAtomicAdd32", Update(QXAtomicAdd32)},
        {"QXAtomicAddSZ", Update(QXAtomicAddSZ)},
        {"QXAtomicIncrement", Step(QXAtomicIncrement)},
        {"QXAtomicDecrement", Step(QXAtomicDecrement)},
        {"QXAtomicExchange", Update(QXAtomicExchange)},
        {"QXAtomicCompareExchange", CompareExchange},
        {"QXPutUnalignedInt16", Unaligned(QXGetUnalignedInt16, QXPutUnalignedInt16)},
        {"QXPutUnalignedInt32", Unaligned(QXGetUnalignedInt32, QXPutUnalignedInt32)},
        {"QXPutUnalignedInt64", Unaligned(QXGetUnalignedInt64, QXPutUnalignedInt64)},
        {"QXSwapInt16", Swap(QXSwapInt16)},
        {"QXSwapInt32", Swap(QXSwapInt32)},
        {"QXSwapInt64", Swap(QXSwapInt64)},
        {"QXGetAlignedSize", AlignedSize},
        {"QXResultFromNative", ResultFromNative},
    };
}

void PrintWords() {
    constexpr uint32_t kNativeNumbers = 2000;
    Line("sizes")
        .Add("QXResult", sizeof(QXResult))
        .Add("QXHandle", sizeof(QXHandle))
        .Add("wchar", sizeof(wchar));
    for (uint32_t number = 0; number < kNativeNumbers; ++number) {
        Line("QXResultFromNative").Add("number", number).Result(QXResultFromNative(number));
    }
}

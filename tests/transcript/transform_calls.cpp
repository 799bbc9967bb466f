#include <qxcore/transform.h>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/values.h"

namespace {

constexpr size_t kUnset = 0x5A5A;

int32_t Substitution(Random& random) {
    constexpr int32_t kSubstitutions[] = {-1,     -1,       0,        '?',     0xFFFD,
                                          0xD800, 0x10FFFF, 0x110000, 0x1F600, -2};
    return random.Of(kSubstitutions);
}

std::u32string Utf32(Random& random) {
    std::u32string text;
    for (uint32_t left = random.OneIn(12) ? random.Between(200, 300) : random.Below(14); left > 0;
         --left) {
        text += random.OneIn(10) ? static_cast<char32_t>(random.Next())
                                 : static_cast<char32_t>(AnyCodePoint(random));
    }
    return text.c_str();
}

template <typename Unit>
std::basic_string<Unit> Source(Random& random) {
    if constexpr (sizeof(Unit) == 4) {
        return Utf32(random);
    } else {
        return Text<Unit>(random);
    }
}

// A capacity: as a rule about as much as the text takes.
size_t Capacity(Random& random, size_t units) {
    return random.OneIn(2) ? 4 * units + 1 : random.Below(2 * units + 2);
}

// The whole of a source, up to its terminator, or its head.
template <typename Length>
Length SourceLength(Random& random, size_t units) {
    return random.OneIn(2) ? Length{-1} : static_cast<Length>(random.Below(units + 1));
}

template <typename To, typename From, typename Length>
MakeCall Convert(QXResult (*convert)(To*, size_t, size_t*, const From*, Length, int32_t)) {
    return [convert](Random& random, Line& line) {
        const auto source = Source<From>(random);
        const auto length = SourceLength<Length>(random, source.size());
        const size_t capacity = Capacity(random, source.size());
        const int32_t substitution = Substitution(random);
        Buffer<To> target(capacity);
        size_t outLength = kUnset;
        line.Add("source", source).Add("length", length).Add("capacity", capacity);
        line.Add("substitution", substitution);
        line.Result(convert(capacity == 0 ? nullptr : target.Begin(), capacity, &outLength,
                            source.c_str(), length, substitution));
        line.Add("outLength", outLength).Add("target", target.Content());
    };
}

template <typename To, typename From>
MakeCall ConvertText(int64_t (*convert)(To*, const From*, int32_t)) {
    return [convert](Random& random, Line& line) {
        const auto source = Text<From>(random);
        const size_t capacity = Capacity(random, source.size());
        Buffer<To> target(capacity);
        line.Add("source", source).Add("capacity", capacity);
        line.Add("->", convert(capacity == 0 ? nullptr : target.Begin(), source.c_str(),
                               static_cast<int32_t>(capacity)));
        line.Add("target", target.Content());
    };
}

template <typename To, typename From>
MakeCall ConvertCounted(To* (*convert)(To*, int32_t, int32_t*, const From*, int32_t)) {
    return [convert](Random& random, Line& line) {
        const auto source = Text<From>(random);
        const auto length = SourceLength<int32_t>(random, source.size());
        const size_t capacity = Capacity(random, source.size());
        Buffer<To> target(capacity);
        int32_t outLength = kUnset;
        line.Add("source", source).Add("length", length).Add("capacity", capacity);
        line.Place("->",
                   convert(target.Begin(), static_cast<int32_t>(capacity), &outLength,
                           source.c_str(), length),
                   target.Begin());
        line.Add("outLength", outLength).Add("target", target.Content());
    };
}

template <typename To, typename From>
MakeCall ConvertNarrow(size_t (*convert)(To*, const From*, size_t)) {
    return [convert](Random& random, Line& line) {
        const std::string text = allowance::NarrowEncodingIsTheSystems(NarrowText(random));
        const std::basic_string<From> source(text.begin(), text.end());
        const size_t limit = random.Below(text.size() + 3);
        Buffer<To> target(limit);
        line.Add("source", source).Add("limit", limit);
        line.Add("->", convert(random.OneIn(4) ? nullptr : target.Begin(), source.c_str(), limit));
        line.Add("target", target.Content());
    };
}

void CountCharacters(Random& random, Line& line) {
    const std::u16string text = WideText(random);
    line.Add("text", text);
    line.Add("->", QXCountCharUTF16(random.OneIn(10) ? nullptr : text.c_str()));
}

void NextCharacter(Random& random, Line& line) {
    const std::u16string text = WideText(random);
    const wchar* cursor = text.c_str();
    const uint32_t unitsLeft = random.OneIn(4)   ? 0xFFFFFFFF
                               : random.OneIn(8) ? 0x80000000
                                                 : random.Below(text.size() + 1);
    line.Add("text", text).Hex("unitsLeft", unitsLeft);
    line.Hex("->", QXNextCharUTF16(&cursor, unitsLeft)).Place("cursor", cursor, text.c_str());
}

void IsMark(Random& random, Line& line) {
    std::string text = std::string(QXUtf8BomStr).substr(0, random.Below(4)) + NarrowText(random);
    line.Add("text", text).Add("->", QXIsUtf8BomStr(text.c_str()));
}

// Another mark than the one that was there, for one comparison.
void OtherMark(Random& random, Line& line) {
    const char* const mark = QXUtf8BomStr;
    line.Add("mark", mark);
    QXUtf8BomStr = "abc";
    const std::string text = random.OneIn(2) ? "abcd" : "abd";
    line.Add("text", text).Add("->", QXIsUtf8BomStr(text.c_str()));
    QXUtf8BomStr = mark;
}

}  // namespace

std::vector<Call> TransformCalls() {
    return {
        {"QXEncUTF8ToUTF16", Convert(QXEncUTF8ToUTF16)},
        {"QXUTF8ToW", Convert(QXUTF8ToW)},
        {"QXEncUTF16ToUTF8", Convert(QXEncUTF16ToUTF8)},
        {"QXWToUTF8", Convert(QXWToUTF8)},
        {"QXEncUTF8ToUTF32", Convert(QXEncUTF8ToUTF32)},
        {"QXEncUTF32ToUTF8", Convert(QXEncUTF32ToUTF8)},
        {"QXUTF8ToUTF16", ConvertText(QXUTF8ToUTF16)},
        {"QXUTF16ToUTF8", ConvertText(QXUTF16ToUTF8)},
        {"QXUTF8ToUTF16N", ConvertCounted(QXUTF8ToUTF16N)},
        {"QXUTF16ToUTF8N", ConvertCounted(QXUTF16ToUTF8N)},
        {"QXAnsiToUnicode", ConvertNarrow(QXAnsiToUnicode)},
        {"QXUnicodeToAnsi", ConvertNarrow(QXUnicodeToAnsi)},
        {"QXCountCharUTF16", CountCharacters},
        {"QXNextCharUTF16", NextCharacter},
        {"QXIsUtf8BomStr", IsMark},
        {"QXUtf8BomStr", OtherMark},
    };
}

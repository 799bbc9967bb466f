#include <qxcore/locale.h>
#include <qxcore/transform.h>

#include <utility>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"
#include "transcript/calls.h"

namespace {

int32_t Substitution(Random& random) {
    constexpr int32_t kSubstitutions[] = {-1,     -1,       0,        '?',     0xFFFD,
                                          0xD800, 0x10FFFF, 0x110000, 0x1F600, -2};
    return random.Of(kSubstitutions);
}

// As a rule about as much room as the text takes.
template <typename Unit>
Buffer<Unit> Target(Random& random, const Draft& draft) {
    return Buffer<Unit>(random.OneIn(2) ? 4 * draft.units + 1 : random.Below(2 * draft.units + 2));
}

template <typename Number>
Number UnsetLength(Random&) {
    return 0x5A5A;
}

template <typename Unit>
std::basic_string<Unit> Ascii(Random& random) {
    const std::string text = allowance::NarrowEncodingIsTheSystems(NarrowText(random));
    return {text.begin(), text.end()};
}

// A limit as the target has room, or any for the null pointer that asks for a length.
size_t Limit(Random& random, const Draft& draft) {
    return draft.room != 0 ? draft.room : random.Below(draft.units + 3);
}

template <typename Unit>
Buffer<Unit> TargetOrNull(Random& random, const Draft& draft) {
    return Buffer<Unit>(random.OneIn(4) ? 0 : random.Below(draft.units + 3));
}

std::string Marked(Random& random) {
    return std::string(QXUtf8BomStr).substr(0, random.Below(4)) + NarrowText(random);
}

// Another mark than the one that was there, for one comparison.
int32_t IsOtherMark(const char* text) {
    const char* const mark = std::exchange(QXUtf8BomStr, "abc");
    const int32_t result = QXIsUtf8BomStr(text);
    QXUtf8BomStr = mark;
    return result;
}

std::string MaybeOtherMark(Random& random) {
    return random.OneIn(2) ? "abcd" : "abd";
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

// Sizes around the least that is enough, which the name itself decides.
void DefaultLocale(Random& random, Line& line) {
    constexpr int32_t kRoom = 64;
    Buffer<wchar> whole(kRoom);
    QXGetDefaultLocale(whole.Begin(), kRoom);
    const size_t length = std::u16string(whole.Begin()).size();
    const int32_t spare = static_cast<int32_t>(random.Below(8)) - 4;
    Buffer<wchar> buffer(kRoom);
    const QXResult result =
        QXGetDefaultLocale(buffer.Begin(), static_cast<int32_t>(length) + spare);
    line.Add("spare", spare).Result(result);
    line.Add("name", allowance::LocaleIsTheUsers(QX_SUCCEEDED(result) ? buffer.Begin() : u""));
    line.Add("behind", buffer.Content().substr(length, 8));
}

void DefaultEncoding(Random& random, Line& line) {
    const auto size = static_cast<int32_t>(random.Below(13));
    Buffer<wchar> buffer(16);
    line.Add("size", size).Result(QXGetDefaultCharEncoding(buffer.Begin(), size));
    line.Add("untouched", buffer.Content() == Buffer<wchar>(16).Content());
}

}  // namespace

std::vector<Call> TransformCalls() {
    constexpr auto kLength = UnsetLength<size_t>;
    constexpr auto kLength32 = UnsetLength<int32_t>;
    return {
        {"QXEncUTF8ToUTF16",
         Row(QXEncUTF8ToUTF16, Target<wchar>, Room, kLength, NarrowText, AnyHead, Substitution)},
        {"QXUTF8ToW",
         Row(QXUTF8ToW, Target<wchar>, Room, kLength, NarrowText, AnyHead, Substitution)},
        {"QXEncUTF16ToUTF8",
         Row(QXEncUTF16ToUTF8, Target<char>, Room, kLength, WideText, AnyHead, Substitution)},
        {"QXWToUTF8", Row(QXWToUTF8, Target<char>, Room, kLength, WideText, AnyHead, Substitution)},
        {"QXEncUTF8ToUTF32",
         Row(QXEncUTF8ToUTF32, Target<char32_t>, Room, kLength, NarrowText, AnyHead, Substitution)},
        {"QXEncUTF32ToUTF8",
         Row(QXEncUTF32ToUTF8, Target<char>, Room, kLength, Utf32Text, AnyHead, Substitution)},
        {"QXUTF8ToUTF16", Row(QXUTF8ToUTF16, Target<wchar>, NarrowText, Room)},
        {"QXUTF16ToUTF8", Row(QXUTF16ToUTF8, Target<char>, WideText, Room)},
        {"QXUTF8ToUTF16N",
         Row(QXUTF8ToUTF16N, Target<wchar>, Room, kLength32, NarrowText, AnyHead)},
        {"QXUTF16ToUTF8N", Row(QXUTF16ToUTF8N, Target<char>, Room, kLength32, WideText, AnyHead)},
        {"QXAnsiToUnicode", Row(QXAnsiToUnicode, TargetOrNull<wchar>, Ascii<char>, Limit)},
        {"QXUnicodeToAnsi", Row(QXUnicodeToAnsi, TargetOrNull<char>, Ascii<wchar>, Limit)},
        {"QXCountCharUTF16", Row(QXCountCharUTF16, TextOrNull<wchar>)},
        {"QXNextCharUTF16", NextCharacter},
        {"QXIsUtf8BomStr", Row(QXIsUtf8BomStr, Marked)},
        {"QXUtf8BomStr", Row(IsOtherMark, MaybeOtherMark)},
        {"QXGetDefaultLocale", DefaultLocale},
        {"QXGetDefaultCharEncoding", DefaultEncoding},
    };
}

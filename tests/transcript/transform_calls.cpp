#include <qxcore/locale.h>
#include <qxcore/transform.h>

#include "transcript/allowances.h"
#include "transcript/calls.h"

namespace {

constexpr int32_t kSubstitutions[] = {-1,     -1,       0,        '?',     0xFFFD,
                                      0xD800, 0x10FFFF, 0x110000, 0x1F600, -2};
constexpr auto kSubstitution = AnyOf<kSubstitutions>;

// As a rule about as much room as the text takes.
template <typename Unit>
Buffer<Unit> Target(Random& random, const Draft& draft) {
    return Buffer<Unit>(random.OneIn(2) ? 4 * draft.units + 1 : random.Below(2 * draft.units + 2));
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
    QXGetDefaultLocale(whole.Get(), kRoom);
    const size_t length = std::u16string(whole.Get()).size();
    const int32_t spare = static_cast<int32_t>(random.Below(8)) - 4;
    Buffer<wchar> buffer(kRoom);
    const QXResult result = QXGetDefaultLocale(buffer.Get(), static_cast<int32_t>(length) + spare);
    line.Add("spare", spare).Result(result);
    line.Add("name", allowance::LocaleIsTheUsers(QX_SUCCEEDED(result) ? buffer.Get() : u""));
    for (size_t behind = length; behind < length + 8; ++behind) {
        line.Add("behind", static_cast<uint32_t>(buffer.Get()[behind]));
    }
}

void DefaultEncoding(Random& random, Line& line) {
    const auto size = static_cast<int32_t>(random.Below(13));
    Buffer<wchar> buffer(16);
    line.Add("size", size).Result(QXGetDefaultCharEncoding(buffer.Get(), size));
    line.Add("untouched", buffer.Content().empty());
}

}  // namespace

Calls TransformCalls() {
    constexpr auto kLength = Unset<size_t>;
    constexpr auto kLength32 = Unset<int32_t>;
    constexpr auto kNarrow = Target<char>;
    constexpr auto kWide = Target<wchar>;
    constexpr auto kUtf32 = Target<char32_t>;
    return {
        {NAMED(QXEncUTF8ToUTF16, kWide, Room, kLength, NarrowText, AnyHead, kSubstitution)},
        {NAMED(QXUTF8ToW, kWide, Room, kLength, NarrowText, AnyHead, kSubstitution)},
        {NAMED(QXEncUTF16ToUTF8, kNarrow, Room, kLength, WideText, AnyHead, kSubstitution)},
        {NAMED(QXWToUTF8, kNarrow, Room, kLength, WideText, AnyHead, kSubstitution)},
        {NAMED(QXEncUTF8ToUTF32, kUtf32, Room, kLength, NarrowText, AnyHead, kSubstitution)},
        {NAMED(QXEncUTF32ToUTF8, kNarrow, Room, kLength, Utf32Text, AnyHead, kSubstitution)},
        {NAMED(QXUTF8ToUTF16, kWide, NarrowText, Room)},
        {NAMED(QXUTF16ToUTF8, kNarrow, WideText, Room)},
        {NAMED(QXUTF8ToUTF16N, kWide, Room, kLength32, NarrowText, AnyHead)},
        {NAMED(QXUTF16ToUTF8N, kNarrow, Room, kLength32, WideText, AnyHead)},
        {NAMED(QXAnsiToUnicode, TargetOrNull<wchar>, Ascii<char>, Limit)},
        {NAMED(QXUnicodeToAnsi, TargetOrNull<char>, Ascii<wchar>, Limit)},
        {NAMED(QXCountCharUTF16, TextOrNull<wchar>)},
        {"QXNextCharUTF16", NextCharacter},
        {NAMED(QXIsUtf8BomStr, Marked)},
        {"QXUtf8BomStr", Row(IsOtherMark, MaybeOtherMark)},
        {"QXGetDefaultLocale", DefaultLocale},
        {"QXGetDefaultCharEncoding", DefaultEncoding},
    };
}

#include <gtest/gtest.h>
#include <qxcore/transform.h>
#include <unicode/ustring.h>

#include <string>
#include <utility>
#include <vector>

#include "support/allocation_fault.h"
#include "support/exact_text.h"
#include "support/known_differences.h"

namespace {

QXResult ResultOf(UErrorCode status) {
    const bool isBad = status >= U_INVALID_CHAR_FOUND && status <= U_ILLEGAL_CHAR_FOUND;
    return U_SUCCESS(status)                   ? QX_S_OK
           : isBad                             ? QX_E_ILLEGALCHAR
           : status == U_BUFFER_OVERFLOW_ERROR ? QX_E_BUFFERTOOSMALL
                                               : QX_E_FAIL;
}

// One direction: the members, and the function of ICU whose results they have.
struct ToWide {
    using Source = char;
    using Target = char16_t;
    static constexpr auto kFull = QXEncUTF8ToUTF16;
    static constexpr auto kSame = QXUTF8ToW;
    static constexpr auto kShort = QXUTF8ToUTF16;
    static constexpr auto kCounted = QXUTF8ToUTF16N;
    static constexpr auto kIcu = u_strFromUTF8WithSub;

    // Texts with a bar behind each: first the well-formed ones.
    static constexpr std::string_view kFragments =
        "|a|\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80|\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF|"
        "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF|\xE8\x89\xB2\xE3\x81\xAF\xE5\x8C\x82 \xF0\x9F\x98\x80z|"
        "\x80|\xBF\xBF|\xC0\x80|\xC1\xBF|\xC3|\xC3(|\xE0\x9F\xBF|\xE3\x81|\xE3(\x81|\xED\xA0\x80|"
        "\xED\xBF\xBF|\xF0\x8F\xBF\xBF|\xF0\x9F\x98|\xF0\x9F(|\xF4\x90\x80\x80|\xF5\x80\x80\x80|"
        "\xF8\x88\x80\x80\x80|\xFE\xFF|";
};

struct ToNarrow {
    using Source = char16_t;
    using Target = char;
    static constexpr auto kFull = QXEncUTF16ToUTF8;
    static constexpr auto kSame = QXWToUTF8;
    static constexpr auto kShort = QXUTF16ToUTF8;
    static constexpr auto kCounted = QXUTF16ToUTF8N;
    static constexpr auto kIcu = u_strToUTF8WithSub;

    static constexpr std::u16string_view kFragments =
        u"|a|\x7F\x80\x7FF\x800\xFFFF|\xD7FF\xE000|\xD800\xDC00\xDBFF\xDFFF|"
        u"\u8272\u306F\u5302\u3078 \U0001F600z|\xD83D|\xD83Dz|\xDE00|\xDE00\xD83D|"
        u"\xD83D\xD83D\xDE00|";
};

template <typename Form>
class Transform : public ::testing::Test {};
using Forms = ::testing::Types<ToWide, ToNarrow>;
TYPED_TEST_SUITE(Transform, Forms);

// The result, the length and every unit of the target.
template <typename Form>
void ExpectAsIcu(const std::basic_string<typename Form::Source>& text, int32_t length,
                 size_t capacity, int32_t substitution) {
    SCOPED_TRACE(::testing::Message()
                 << ::testing::PrintToString(text) << " length " << length << " capacity "
                 << capacity << " substitution " << substitution);
    ExactBlock<typename Form::Source> source({text.c_str(), text.size() + (length < 0 ? 1 : 0)});
    ExactBlock<typename Form::Target> expected(capacity), target(capacity);
    UErrorCode status = U_ZERO_ERROR;
    int32_t expectedLength = 0;
    Form::kIcu(expected.Begin(), static_cast<int32_t>(capacity), &expectedLength, source.Begin(),
               length, substitution, nullptr, &status);
    size_t produced = 7;
    ASSERT_EQ(ResultOf(status), Form::kFull(target.Begin(), capacity, &produced, source.Begin(),
                                            length, substitution));
    ASSERT_EQ(static_cast<size_t>(expectedLength), produced);
    ASSERT_EQ(expected.Content(), target.Content());
}

// Fragments stand alone, behind ASCII of lengths round a block of it, and between longer text.
TYPED_TEST(Transform, EqualsIcuForEveryCapacity) {
    using Text = std::basic_string<typename TypeParam::Source>;
    Text rest(TypeParam::kFragments);
    while (!rest.empty()) {
        const Text fragment = rest.substr(0, rest.find('|'));
        rest.erase(0, fragment.size() + 1);
        for (const size_t ahead : {0, 1, 15, 16, 17, 33}) {
            const Text text = Text(ahead, 'x') + fragment + Text(ahead / 2, 'y');
            for (const int32_t substitution : {-1, 0, 0x3F, 0xFFFD, 0x1F600}) {
                for (size_t capacity = 0; capacity <= 3 * text.size() + 2; ++capacity) {
                    for (const int32_t length : {-1, static_cast<int32_t>(text.size())}) {
                        ExpectAsIcu<TypeParam>(text, length, capacity, substitution);
                        ASSERT_FALSE(this->HasFatalFailure());
                    }
                }
            }
        }
    }
}

// The other members have the same way. What tells of a failure is a length that stays as it was.
TYPED_TEST(Transform, ShorterMembersShowFailuresByWhatTheyLeave) {
    using Text = std::basic_string<typename TypeParam::Source>;
    const Text good(40, 'x');
    const Text bad = good + static_cast<typename TypeParam::Source>(0xDCDC);
    typename TypeParam::Target target[50];
    size_t length = 7;
    EXPECT_EQ(QX_S_OK, TypeParam::kSame(target, 50, &length, good.c_str(), -1, '?'));
    EXPECT_EQ(40u, length);
    EXPECT_EQ(40, TypeParam::kShort(target, good.c_str(), 39));
    EXPECT_EQ(50, TypeParam::kShort(target, bad.c_str(), 50));
    EXPECT_EQ(-5, TypeParam::kShort(target, good.c_str(), -5));
    int32_t units = 7;
    EXPECT_EQ(nullptr, TypeParam::kCounted(target, 50, &units, bad.c_str(), -1));
    EXPECT_EQ(nullptr, TypeParam::kCounted(target, -5, &units, good.c_str(), -1));
    EXPECT_EQ(7, units);
    EXPECT_EQ(target, TypeParam::kCounted(target, 9, &units, good.c_str(), 39));
    EXPECT_EQ(39, units);
    EXPECT_EQ(target, TypeParam::kCounted(target, 50, nullptr, good.c_str(), -1));
}

TYPED_TEST(Transform, EqualsIcuForArgumentsThatItRefuses) {
    const std::basic_string<typename TypeParam::Source> text(20, 'x');
    for (const int32_t substitution : {0xD800, 0x110000, -2}) {
        ExpectAsIcu<TypeParam>(text, -1, 50, substitution);
    }
    ExpectAsIcu<TypeParam>(text, -2, 50, -1);
    ExpectAsIcu<TypeParam>(text, INT32_MIN, 50, '?');
    typename TypeParam::Target target[50];
    size_t length = 7;
    const auto convert = [&](auto* to, size_t capacity) {
        return TypeParam::kFull(to, capacity, &length, text.c_str(), -1, -1);
    };
    EXPECT_EQ(QX_E_FAIL, convert(decltype(+target){}, 50));
    EXPECT_EQ(QX_E_BUFFERTOOSMALL, convert(decltype(+target){}, 0));
    EXPECT_EQ(20u, length);
    EXPECT_EQ(QX_E_FAIL, TypeParam::kFull(target, 50, &length, nullptr, 3, -1));
    EXPECT_EQ(0u, length);
    EXPECT_EQ(QX_S_OK, TypeParam::kFull(target, 50, nullptr, nullptr, 0, -1));
    // Of a capacity the low 32 bits count, as a signed number.
    EXPECT_EQ(QX_S_OK, convert(target, 0x700000032));
    EXPECT_EQ(QX_E_BUFFERTOOSMALL, convert(target, 0x100000000));
    EXPECT_EQ(QX_E_FAIL, convert(target, 0x80000000));
}

// Also round the place where the scratch moves to the heap.
TEST(TransformUtf32, ConvertsBothWays) {
    for (const size_t ahead : {0, 253, 254, 505, 506, 600}) {
        const std::u32string wide = std::u32string(ahead, U'x') + U"\u00DF\U0001F34C";
        const std::string utf8 = std::string(ahead, 'x') + "\xC3\x9F\xF0\x9F\x8D\x8C";
        ExactBlock<char32_t> units(wide.size());
        ExactBlock<char> bytes(utf8.size());
        for (const size_t missing : {1, 0}) {
            const QXResult expected = missing != 0 ? QX_E_BUFFERTOOSMALL : QX_S_OK;
            size_t length = 7;
            EXPECT_EQ(expected, QXEncUTF8ToUTF32(units.Begin(), units.Size() - missing, &length,
                                                 utf8.c_str(), -9, -1));
            EXPECT_EQ(wide.size(), length);
            EXPECT_EQ(expected,
                      QXEncUTF32ToUTF8(bytes.Begin(), bytes.Size() - missing, &length, wide.data(),
                                       static_cast<int64_t>(wide.size()), -1));
            EXPECT_EQ(utf8.size(), length);
        }
        EXPECT_EQ(wide, units.Content());
        EXPECT_EQ(utf8, bytes.Content());
    }
}

TEST(TransformUtf32, BadInputIsReplacedOrRefused) {
    char narrow[16];
    size_t length = 7;
    for (const char32_t bad : {0xD800, 0x7FFFFFFF}) {
        const char32_t text[] = {U'a', bad, U'b'};
        EXPECT_EQ(QX_E_ILLEGALCHAR, QXEncUTF32ToUTF8(narrow, 16, &length, text, 3, -1));
        EXPECT_EQ(0u, length);
        EXPECT_EQ(QX_E_FAIL, QXEncUTF32ToUTF8(narrow, 16, &length, text, 3, 0xD800));
        EXPECT_EQ(QX_S_OK, QXEncUTF32ToUTF8(narrow, 16, &length, text, 3, 0x3F));
        EXPECT_STREQ("a?b", narrow);
    }
    char32_t wide[2000];
    EXPECT_EQ(QX_E_ILLEGALCHAR, QXEncUTF8ToUTF32(wide, 16, &length, "a\xFFz", -1, -1));
    EXPECT_EQ(QX_S_OK, QXEncUTF8ToUTF32(wide, 16, &length, "a\xFFz", -1, 0x1F600));
    EXPECT_EQ(std::u32string(U"a\U0001F600z"), wide);
    // A scratch on the heap has one unit a byte, too few for substitutes of two.
    EXPECT_EQ(QX_E_BUFFERTOOSMALL,
              QXEncUTF8ToUTF32(wide, 2000, &length, std::string(600, '\xFF').c_str(), -1, 0x1F600));
    EXPECT_EQ(0u, length);
}

TEST(TransformUtf32, OutOfMemoryIsAFailureThatStoresNoLength) {
    const std::string bytes(512, 'x');
    const std::u32string units(256, U'x');
    char32_t wide[600];
    char narrow[600];
    for (const int less : {0, 1}) {  // one unit less needs no heap
        const QXResult expected = less == 0 ? QX_E_FAIL : QX_S_OK;
        size_t length = 7;
        FailAllocation(1);
        EXPECT_EQ(expected, QXEncUTF8ToUTF32(wide, 600, &length, bytes.c_str(), 512 - less, -1));
        EXPECT_EQ(less == 0, AllocationHasFailed());
        FailAllocation(1);
        EXPECT_EQ(expected, QXEncUTF32ToUTF8(narrow, 600, &length, units.c_str(), 256 - less, -1));
        EXPECT_EQ(less == 0, AllocationHasFailed());
        EXPECT_EQ(less == 0 ? 7u : 255u, length);
    }
    FailAllocation(0);
    size_t length = 7;
    EXPECT_EQ(QX_E_FAIL, QXEncUTF32ToUTF8(narrow, 600, &length, units.c_str(), INT64_MAX, -1));
}

TEST(Narrow, BecomesWideUpToEveryLimit) {
    struct Row {
        std::string narrow;
        std::u16string wide;
        size_t result;  // units that are needed, or what a failure gives
    };
    std::vector<Row> rows = {
        {"", u"", 0},
        {std::string(40, 'x'), std::u16string(40, u'x'), 40},
        {kNarrowTextIsUtf8 ? "sixteen letters!\xC3\xA4z" : "sixteen letters!\xE4z",
         u"sixteen letters!\u00E4z", 18},
        {"a\xE6\xB0\xB4\xF0\x9F\x8D\x8C!", u"a\u6C34\U0001F34C!", 5},
        {"\xFF", u"", SIZE_MAX},
        {"ab\xC3", u"ab", 1},
        {"ab\xED\xA0\x80", u"ab", 1},
        {"ab\xC0\x80z", u"ab", 1}};
    rows.resize(kNarrowTextIsUtf8 ? rows.size() : 3);
    for (const Row& row : rows) {
        ExactBlock<char> source({row.narrow.c_str(), row.narrow.size() + 1});
        EXPECT_EQ(row.result, QXAnsiToUnicode(nullptr, source.Begin(), 0)) << row.narrow;
        const bool isGood = row.result == row.wide.size();
        for (size_t limit = 0; limit <= row.wide.size() + 2; ++limit) {
            ExactBlock<char16_t> target(limit);
            const size_t result = QXAnsiToUnicode(target.Begin(), source.Begin(), limit);
            size_t fitting = std::min(limit, row.wide.size());
            fitting -= fitting < row.wide.size() && U16_IS_TRAIL(row.wide[fitting]) ? 1 : 0;
            EXPECT_EQ(isGood || limit <= row.wide.size() ? fitting : row.result, result)
                << row.narrow << " " << limit;
            const std::u16string written = row.wide.substr(0, fitting);
            const bool isEnded = isGood && limit > fitting && fitting == row.wide.size();
            EXPECT_EQ(written + std::u16string(isEnded ? 1 : 0, u'\0'),
                      target.Content().substr(0, fitting + (isEnded ? 1 : 0)));
        }
    }
    char16_t wide[64];
    EXPECT_EQ(18u, QXAnsiToUnicode(wide, rows[2].narrow.c_str(), SIZE_MAX));
    // No terminator is needed where the limit ends the text.
    ExactBlock<char> open(std::string_view("0123456789abcdefghij"));
    EXPECT_EQ(20u, QXAnsiToUnicode(wide, open.Begin(), 20));
}

TEST(Narrow, IsMadeOfWideUpToEveryLimit) {
    const std::u16string wide =
        kNarrowTextIsUtf8 ? u"sixteen letters \u00E4\u6C34\U0001F34C!" : u"sixteen letters \u00E4!";
    const std::string narrow = kNarrowTextIsUtf8
                                   ? "sixteen letters \xC3\xA4\xE6\xB0\xB4\xF0\x9F\x8D\x8C!"
                                   : "sixteen letters \xE4!";
    EXPECT_EQ(narrow.size(), QXUnicodeToAnsi(nullptr, wide.c_str(), 0));
    for (size_t limit = 0; limit <= narrow.size() + 1; ++limit) {
        ExactBlock<char> target(limit);
        size_t fitting = std::min(limit, narrow.size());
        while (kNarrowTextIsUtf8 && fitting < narrow.size() && (narrow[fitting] & 0xC0) == 0x80) {
            --fitting;
        }
        EXPECT_EQ(fitting, QXUnicodeToAnsi(target.Begin(), wide.c_str(), limit));
        EXPECT_EQ(narrow.substr(0, fitting), target.Content().substr(0, fitting));
    }
    char target[10];
    EXPECT_EQ(kNarrowTextIsUtf8 ? 3 : SIZE_MAX, QXUnicodeToAnsi(target, u"\u6C34", SIZE_MAX));
    const char16_t lone[] = {u'a', 0xDC00, 0};
    EXPECT_EQ(SIZE_MAX, QXUnicodeToAnsi(target, lone, 10));
}

TEST(Utf16, IsReadCharacterByCharacter) {
    struct Row {
        std::u16string text;
        uint32_t left, character;
        int moved;
    };
    for (const Row& row : {Row{{0xD83D, 0xDE00}, 2, 0x1F600, 2},
                           {{0xDBFF, 0xDFFF}, 0xFFFFFFFF, 0x10FFFF, 2},
                           {{0xD83D, 0xDE00}, 1, 0xD83D, 1},
                           {{0xD83D, u'a'}, 2, 0xD83D, 1},
                           {{0xDE00, 0xD83D}, 2, 0xDE00, 1},
                           {u"a", 0, 0, 0},
                           {u"a", 0x80000000, 0, 0},
                           {u"", 1, 0, 1}}) {
        const char16_t* cursor = row.text.c_str();
        EXPECT_EQ(row.character, QXNextCharUTF16(&cursor, row.left));
        EXPECT_EQ(row.moved, cursor - row.text.c_str());
    }
    EXPECT_EQ(0, QXCountCharUTF16(nullptr));
    EXPECT_EQ(2, QXCountCharUTF16(u"\U0001F600z"));
}

TEST(Utf8Mark, IsComparedWithTheVariableAsItStands) {
    EXPECT_EQ(1, QXIsUtf8BomStr("\xEF\xBB\xBFtext"));
    EXPECT_EQ(0, QXIsUtf8BomStr(ExactText<char>("\xEF\xBB").data()));
    const char* const before = std::exchange(QXUtf8BomStr, "abc");
    EXPECT_EQ(1, QXIsUtf8BomStr("abcd"));
    QXUtf8BomStr = before;
}

}  // namespace

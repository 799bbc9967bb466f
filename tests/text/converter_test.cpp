#include <gtest/gtest.h>
#include <qxcore/converter.h>
#include <unicode/uclean.h>
#include <unicode/ucnv.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "support/allocation_fault.h"
#include "support/exact_text.h"

namespace {

struct Closer {
    void operator()(QXEncConverter* converter) const { QXEncToW_Close(converter); }
};
using Converter = std::unique_ptr<QXEncConverter, Closer>;

Converter Open(const char16_t* name) {
    return Converter(QXEncToW_Open(name));
}

template <typename Unit>
struct Converted {
    QXResult result;
    std::basic_string<Unit> text;
    size_t read;
};

// The whole text through Convert and Flush; the first failure ends it.
template <typename To, typename From>
Converted<To> Through(QXEncConverter* converter, std::basic_string_view<From> source,
                      QXResult (*convert)(QXEncConverter*, const From**, const From*, To**, To*),
                      QXResult (*flush)(QXEncConverter*, To**, To*)) {
    ExactBlock<From> block(source);
    const From* from = block.Begin();
    std::basic_string<To> text(8 * source.size() + 8, '#');
    To* target = text.data();
    To* const limit = target + text.size();
    QXResult result = convert(converter, &from, block.End(), &target, limit);
    if (QX_SUCCEEDED(result)) {
        result = flush(converter, &target, limit);
    }
    text.resize(static_cast<size_t>(target - text.data()));
    return {result, text, static_cast<size_t>(from - block.Begin())};
}

Converted<char16_t> ToWide(QXEncConverter* converter, std::string_view bytes) {
    return Through<char16_t>(converter, bytes, QXEncToW_Convert, QXEncToW_Flush);
}

Converted<char> FromWide(QXEncConverter* converter, std::u16string_view text) {
    return Through<char>(converter, text, QXEncFromW_Convert, QXEncFromW_Flush);
}

TEST(Converter, IsChosenByNameAndFallsBackToLatin1) {
    struct Row {
        std::u16string name;
        const char* bytes;
        std::u16string text;
    };
    testing::internal::CaptureStdout();
    for (const Row& row : {Row{u"CP1252", "\x80\xE9", u"\u20AC\u00E9"},
                           {u"SJIS", "\x93\xFA\xB1", u"\u65E5\uFF71"},
                           {u"CP932", "\x93\xFA", u"\u65E5"},
                           {u"ISO-2022-JP", "\x1B$BF|\x1B(B", u"\u65E5"},  // the flush goes back
                           {std::u16string(127, u'x'), "\x80\xE9", u"\u0080\u00E9"},
                           {u"\u0155TF-8", "\xC3\xA9", u"\u00E9"},         // cut to "UTF-8"
                           {u"UTF-8\u0100zzz", "\xC3\xA9", u"\u00E9"}}) {  // ends at the zero byte
        const Converter converter = Open(row.name.c_str());
        EXPECT_EQ(row.text, ToWide(converter.get(), row.bytes).text) << row.bytes;
        EXPECT_EQ(row.bytes, FromWide(converter.get(), row.text).text);
    }
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    QXEncToW_Close(nullptr);
    QXEncFromW_Close(nullptr);
}

TEST(Converter, WithoutANameWaitsForTheInitialisation) {
    testing::internal::CaptureStdout();
    const Converter none = Open(nullptr);
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_EQ(QX_E_NOCONVERTER, ToWide(none.get(), "a").result);
    char16_t unit;
    char16_t* target = &unit;
    EXPECT_EQ(QX_E_NOCONVERTER, QXEncToW_Flush(none.get(), &target, &unit + 1));
    EXPECT_EQ(QX_S_OK, QXEncToW_SetSubstitutionChar(none.get(), -1));
    EXPECT_EQ(ucnv_countAvailable(), QXEncUtilInit(""));
    EXPECT_EQ(u"a", ToWide(Open(nullptr).get(), "a").text);
    EXPECT_EQ(QX_E_NOCONVERTER, ToWide(none.get(), "a").result);
}

TEST(ConverterDeathTest, OnlyTheWayFromWideTextEndsTheProcess) {
    EXPECT_DEATH(FromWide(Open(nullptr).get(), u"a"), "terminate");
    EXPECT_DEATH(
        {
            char* target = nullptr;
            QXEncFromW_Flush(Open(nullptr).get(), &target, target);
        },
        "terminate");
    char byte = 'a';
    size_t one = 1;
    EXPECT_DEATH(QXEncConvert(&byte, &one, u"UTF-8", &byte, &one, nullptr, -1), "terminate");
    size_t size = 1;
    EXPECT_EQ(QX_E_NOCONVERTER, QXEncConvert(&byte, &one, nullptr, &byte, &size, u"UTF-8", -1));
    EXPECT_EQ(0u, one);
    EXPECT_EQ(0u, size);
}

bool s_icuHasMemory = true;

TEST(Converter, TellsOnStandardOutputWhenNothingOpens) {
    UErrorCode status = U_ZERO_ERROR;
    u_setMemoryFunctions(
        nullptr,
        [](const void*, size_t size) { return s_icuHasMemory ? std::malloc(size) : nullptr; },
        [](const void*, void* block, size_t size) {
            return s_icuHasMemory ? std::realloc(block, size) : nullptr;
        },
        [](const void*, void* block) { std::free(block); }, &status);
    ASSERT_EQ(U_ZERO_ERROR, status);
    QXEncUtilInit("");
    s_icuHasMemory = false;
    testing::internal::CaptureStdout();
    const Converter named = Open(u"CP1252");
    EXPECT_EQ("No converter for ISO-8859-1\nISO-8859-1: Could not open converter\n",
              testing::internal::GetCapturedStdout());
    testing::internal::CaptureStdout();
    const Converter unnamed = Open(nullptr);
    EXPECT_EQ("default: Could not open converter\n", testing::internal::GetCapturedStdout());
    EXPECT_EQ(QX_E_NOCONVERTER, ToWide(named.get(), "a").result);
    s_icuHasMemory = true;
}

TEST(Converter, PutsTheSubstituteForWhatItCannotHold) {
    struct Row {
        const char16_t* name;
        int32_t substitution;
        QXResult set;
        std::string bytes;  // for a, a lone surrogate, b
        QXResult result;
    };
    const char16_t text[] = {u'a', 0xD83D, u'b', 0};
    for (const Row& row : {Row{u"CP1252", 0x20AC, QX_S_OK, "a\200b", QX_S_OK},
                           {u"CP1252", 0, QX_E_ILLEGALCHAR, "a\032b", QX_S_OK},
                           {u"CP1252", INT32_MAX, QX_E_ILLEGALCHAR, "a\032b", QX_S_OK},
                           {u"CP1252", INT32_MIN, QX_S_OK, "a", QX_E_ILLEGALCHAR},
                           {u"UTF-8", 0, QX_S_OK, "a\357\277\275b", QX_S_OK},
                           {u"UTF-8", 0x10FFFF, QX_E_ILLEGALCHAR, "a\357\277\275b", QX_S_OK},
                           {u"UTF-8", 0x10FFFE, QX_S_OK, "a\364\217\277\276b", QX_S_OK}}) {
        const Converter converter = Open(row.name);
        EXPECT_EQ(row.set, QXEncFromW_SetSubstitutionChar(converter.get(), row.substitution));
        const Converted<char> narrow = FromWide(converter.get(), text);
        EXPECT_EQ(row.bytes, narrow.text) << row.substitution;
        EXPECT_EQ(row.result, narrow.result);
    }
    // A substitute does not take the stop back.
    const Converter stopped = Open(u"CP1252");
    QXEncToW_SetSubstitutionChar(stopped.get(), -1);
    EXPECT_EQ(QX_S_OK, QXEncToW_SetSubstitutionChar(stopped.get(), '?'));
    EXPECT_EQ(QX_E_ILLEGALCHAR, FromWide(stopped.get(), text).result);
}

TEST(Converter, CutTextIsRefusedByTheFlushAndGoesOnBehindTheCut) {
    const std::string bytes = "a\xF0\x9F\x98\x80z";
    for (size_t cut = 0; cut <= bytes.size(); ++cut) {
        const Converter stopped = Open(u"UTF-8");
        QXEncToW_SetSubstitutionChar(stopped.get(), -1);
        const Converted<char16_t> head = ToWide(stopped.get(), bytes.substr(0, cut));
        EXPECT_EQ(cut > 1 && cut < 5 ? QX_E_ILLEGALCHAR : QX_S_OK, head.result) << cut;
        EXPECT_EQ(cut, head.read);

        const Converter converter = Open(u"UTF-8");
        std::u16string text(4, u'#');
        const char* from = bytes.data();
        char16_t* to = text.data();
        for (const size_t size : {cut, bytes.size()}) {
            EXPECT_EQ(QX_S_OK, QXEncToW_Convert(converter.get(), &from, bytes.data() + size, &to,
                                                &text.back() + 1));
        }
        EXPECT_EQ(u"a\U0001F600z", text);
    }
}

struct OneShot {
    QXResult result;
    size_t read;
    size_t written;
    std::string target;  // the whole of it
};

OneShot Convert(const std::string& source, const char16_t* from, size_t capacity,
                const char16_t* to, int32_t substitution) {
    ExactBlock<char> block{std::string_view(source)};
    ExactBlock<char> target(capacity);
    size_t read = source.size();
    size_t written = capacity;
    const QXResult result =
        QXEncConvert(block.Begin(), &read, from, target.Begin(), &written, to, substitution);
    return {result, read, written, target.Content()};
}

// Passes of 1024 units: text of which a pair lies across their border.
TEST(OneShot, HasNoSeamBetweenItsPasses) {
    for (const size_t ahead : {1022, 1023, 5000}) {
        std::string source(ahead, 'x');
        std::string expected(ahead, 'x');
        for (int count = 0; count < 600; ++count) {
            source += "\xF0\x9F\x98\x80\xC3\xA4";
            expected += "\x94\x39\xFC\x36\x81\x30\x8A\x31";
        }
        const OneShot shot = Convert(source, u"UTF-8", expected.size(), u"GB18030", -1);
        EXPECT_EQ(QX_S_OK, shot.result);
        EXPECT_EQ(expected, shot.target);
        EXPECT_EQ(source.size(), shot.read);
    }
}

TEST(OneShot, TellsHowFarAFailureCame) {
    struct Row {
        std::string source;
        size_t capacity;
        int32_t substitution;
        QXResult result;
        size_t read, written;
    };
    const std::string longText(3000, 'x');
    for (const Row& row : {Row{"", 9, '?', QX_S_OK, 0, 0},
                           {"ab\xFFz", 9, -1, QX_E_ILLEGALCHAR, 3, 2},
                           {"ab\xE6\x97", 9, -1, QX_E_ILLEGALCHAR, 4, 2},
                           {"ab\xE6\x97", 9, '?', QX_S_OK, 4, 3},
                           {"ab\xF0\x9F\x98\x80z", 9, -1, QX_E_ILLEGALCHAR, 7, 2},
                           {"ab\xF0\x9F\x98\x80z", 9, '?', QX_S_OK, 7, 4},
                           {"abc", 9, 0, QX_E_ILLEGALCHAR, 3, 9},
                           {"\xE6\x97\xA5z", 1, -1, QX_E_BUFFERTOOSMALL, 4, 1},
                           {longText, 3001, -1, QX_S_OK, 3000, 3000},
                           {longText, 10, '?', QX_E_BUFFERTOOSMALL, 1024, 10},
                           {longText, 2000, '?', QX_E_BUFFERTOOSMALL, 2048, 2000},
                           {longText, 2999, '?', QX_E_BUFFERTOOSMALL, 3000, 2999}}) {
        const OneShot shot = Convert(row.source, u"UTF-8", row.capacity, u"SJIS", row.substitution);
        EXPECT_EQ(row.result, shot.result) << row.source << row.substitution;
        EXPECT_EQ(row.read, shot.read);
        EXPECT_EQ(row.written, shot.written);
        EXPECT_EQ(std::string(row.capacity - row.written, ExactBlock<char>::kUntouched),
                  shot.target.substr(row.written));
    }
    size_t none[] = {0, 0};
    EXPECT_EQ(QX_S_OK, QXEncConvert(nullptr, none, u"SJIS", nullptr, none + 1, u"UTF-8", '?'));
    EXPECT_EQ(QX_E_ILLEGALCHAR, Convert("abc", u"SJIS", 9, u"UTF-8", 0).result);
}

// Whatever the pieces that it is read in, and also where a character cannot be mapped.
TEST(OneShot, ConvertsWhatDoesNotGrowWithinOneBuffer) {
    for (const int repeats : {1, 200}) {
        std::string text, expected;
        for (int count = 0; count < repeats; ++count) {
            text += "caf\u00E9 5 \u20AC d\u00E9j\u00E0 ";
            expected += "caf\xE9 5 ? d\xE9j\xE0 ";
        }
        size_t size = text.size();
        size_t written = size;
        EXPECT_EQ(QX_S_OK, QXEncConvert(text.data(), &size, u"UTF-8", text.data(), &written,
                                        u"ISO-8859-1", '?'));
        EXPECT_EQ(text.size(), size);
        EXPECT_EQ(expected, text.substr(0, written));
    }
}

// Not a result: the name of each object is an allocation.
TEST(Converter, FailingAllocationLeavesAsAnException) {
    const auto failures = [](auto body) {
        return ForEachFailingAllocation([&] {
            try {
                body();
                return true;
            } catch (const std::bad_alloc&) {
                return false;
            }
        });
    };
    EXPECT_EQ(2, failures([] { Open(u"windows-1252"); }));
    // Two of these are the test's own blocks.
    EXPECT_EQ(4, failures([] { Convert("a", u"windows-1252", 1, u"ISO-8859-1", '?'); }));
}

}  // namespace

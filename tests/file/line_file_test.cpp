#include <gtest/gtest.h>
#include <qxcore/line_file.h>

#include <fstream>
#include <string>
#include <vector>

#include "support/temporary_directory.h"

namespace {

using Lines = std::vector<std::u16string>;

class LineFileTest : public testing::Test {
  protected:
    std::string Path() const { return (m_directory.Path() / "lines.txt").string(); }

    // `units` in one order of bytes, as they are on disk.
    void Put(const std::u16string& units, bool bigEndian, size_t cut = 0) const {
        std::ofstream file(Path(), std::ios::binary);
        std::string bytes;
        for (const char16_t unit : units) {
            const char high = static_cast<char>(unit >> 8);
            const char low = static_cast<char>(unit & 255);
            bytes += bigEndian ? std::string{high, low} : std::string{low, high};
        }
        file << bytes.substr(0, bytes.size() - cut);
    }

    std::string Bytes() const {
        std::ifstream file(Path(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    Lines Read(int32_t size = 100) const {
        Lines lines;
        UFILE* const file = QXFileOpenUTF16(Path().c_str(), "r");
        EXPECT_NE(file, nullptr);
        std::vector<wchar> buffer(static_cast<size_t>(size), u'?');
        while (QXFileGetLineUTF16(buffer.data(), size, file) == buffer.data()) {
            lines.emplace_back(buffer.data());
        }
        QXFileCloseUTF16(file);
        return lines;
    }

    const TemporaryDirectory m_directory;
};

TEST_F(LineFileTest, LinesComeWithoutTheirEnds) {
    const struct {
        std::u16string text;
        Lines lines;
        int32_t size = 100;
        size_t cut = 0;
    } cases[] = {
        {u"", {}},
        {u"one\ntwo\r\n\nlast", {u"one", u"two", u"", u"last"}},
        {u"a\rb\r\n", {u"a", u"b"}},
        {u"a\u2028b\u0085c\x0B d\x0C", {u"a\u2028", u"b\u0085", u"c\x0B", u" d\x0C"}},
        {u"abcdef\ngh\n", {u"abc", u"def", u"", u"gh"}, 4},
        {u"\U0001F600\U0001F600\n", {u"\U0001F600\U0001F600"}},
        {u"ab\xD83D", {u"ab\uFFFD"}, 4},
        {u"ab\xDE00z\n", {u"ab\uFFFD", u"z"}, 4},
        {u"ab\U0001F600\n", {u"ab\xD83D", u"\xDE00"}, 4},
        {std::u16string(1023, u'x') + u"\U0001F600\n",
         {std::u16string(1023, u'x') + u"\U0001F600"},
         1100},
        {std::u16string(1023, u'x') + u"\r\ny", {std::u16string(1023, u'x'), u"y"}, 1100},
        {u"ab\n"
         u"c",
         {u"ab", u"\uFFFD"},
         100,
         1},
    };
    for (const auto& each : cases) {
        for (const bool bigEndian : {false, true}) {
            Put(u"\uFEFF" + each.text, bigEndian, each.cut);
            EXPECT_EQ(Read(each.size), each.lines) << testing::PrintToString(each.text);
        }
    }
    Put(u"plain\n", true);
    EXPECT_EQ(Read(), Lines{u"plain"});
}

TEST_F(LineFileTest, LongerThanAnyBuffer) {
    std::u16string longest;
    for (int i = 0; i < 20000; ++i) {
        longest += static_cast<char16_t>(u'a' + i % 26);
    }
    Put(u"\uFEFF" + longest + u"\r\nx", true);
    EXPECT_EQ(Read(30000), (Lines{longest, u"x"}));
    std::u16string joined;
    for (const std::u16string& piece : Read(7)) {
        EXPECT_LE(piece.size(), 6u);
        joined += piece;
    }
    EXPECT_EQ(joined, longest + u"x");
}

TEST_F(LineFileTest, WrittenLinesEndInTwoUnitsOnEveryPlatform) {
    for (const char* mode : {"w", "wt", "wb", "w+"}) {
        UFILE* const file = QXFileOpenUTF16(Path().c_str(), mode);
        ASSERT_NE(file, nullptr) << mode;
        EXPECT_EQ(QXFileWriteLineUTF16(u"abc", file), 5);
        EXPECT_EQ(QXFileWriteLineUTF16(u"", file), 2);
        EXPECT_EQ(QXFileWriteLineUTF16(u"\u0A0A\U0001F600", file), 5);
        QXFileCloseUTF16(file);
        const char16_t expected[] = u"\uFEFFabc\r\n\r\n\u0A0A\U0001F600\r\n";
        EXPECT_EQ(Bytes(), std::string(reinterpret_cast<const char*>(expected),
                                       sizeof expected - sizeof(char16_t)));
        EXPECT_EQ(Read(), (Lines{u"abc", u"", u"\u0A0A\U0001F600"}));
    }
}

TEST_F(LineFileTest, WhatCannotBeOpenedIsNull) {
    EXPECT_EQ(QXFileOpenUTF16(Path().c_str(), "r"), nullptr);
    EXPECT_EQ(QXFileOpenUTF16((Path() + "/beneath").c_str(), "w"), nullptr);
    EXPECT_EQ(QXFileOpenUTF16(Path().c_str(), ""), nullptr);
    QXFileCloseUTF16(nullptr);
}

}  // namespace

#include <gtest/gtest.h>
#include <qxcore/line_file.h>

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
        std::string bytes;
        for (const char16_t unit : units) {
            bytes += static_cast<char>(bigEndian ? unit >> 8 : unit);
            bytes += static_cast<char>(bigEndian ? unit : unit >> 8);
        }
        WriteFile(Path(), bytes.substr(0, bytes.size() - cut));
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
    const std::u16string x1023(1023, u'x');
    const std::u16string x20000(20000, u'x');
    const struct {
        std::u16string text;
        Lines lines;
        int32_t size = 100;
        size_t cut = 0;
    } cases[] = {
        {u"", {}},
        {u"one\ntwo\r\n\na\rlast", {u"one", u"two", u"", u"a", u"last"}},
        {u"a\u2028b\u0085c\x0B d\x0C", {u"a\u2028", u"b\u0085", u"c\x0B", u" d\x0C"}},
        {u"abcdef\ngh\n", {u"abc", u"def", u"", u"gh"}, 4},
        {u"ab\xD83D", {u"ab\uFFFD"}, 4},
        {u"ab\xDE00z\n", {u"ab\uFFFD", u"z"}, 4},
        {u"ab\U0001F600\n", {u"ab\xD83D", u"\xDE00"}, 4},
        {x1023 + u"\U0001F600\n", {x1023 + u"\U0001F600"}, 1100},
        {x1023 + u"\r\ny", {x1023, u"y"}, 1100},
        {x20000 + u"\r\ny", {x20000, u"y"}, 30000},
        {u"ab\nc", {u"ab", u"\uFFFD"}, 100, 1},
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

TEST_F(LineFileTest, WrittenLinesEndInTwoUnitsOnEveryPlatform) {
    for (const char* mode : {"w", "wt", "wb"}) {
        UFILE* const file = QXFileOpenUTF16(Path().c_str(), mode);
        ASSERT_NE(file, nullptr) << mode;
        EXPECT_EQ(QXFileWriteLineUTF16(u"abc", file), 5);
        EXPECT_EQ(QXFileWriteLineUTF16(u"", file), 2);
        EXPECT_EQ(QXFileWriteLineUTF16(u"\u0A0A\U0001F600", file), 5);
        QXFileCloseUTF16(file);
        const char16_t expected[] = u"\uFEFFabc\r\n\r\n\u0A0A\U0001F600\r\n";
        EXPECT_EQ(ReadFile(Path()), std::string(reinterpret_cast<const char*>(expected),
                                                sizeof expected - sizeof(char16_t)));
    }
}

TEST_F(LineFileTest, WhatCannotBeOpenedIsNull) {
    for (const auto& [end, mode] : {std::pair{"", "r"}, {"/beneath", "w"}, {"", ""}}) {
        EXPECT_EQ(QXFileOpenUTF16((Path() + end).c_str(), mode), nullptr) << mode;
    }
    QXFileCloseUTF16(nullptr);
}

}  // namespace

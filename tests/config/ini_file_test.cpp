#include "config/ini_file.h"

#include <gtest/gtest.h>
#include <qxcore/result.h>

#include <chrono>

#include "config/ini_iterators.h"
#include "core/exception.h"
#include "support/child_role.h"
#include "support/system.h"

namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::u16string>;

std::u16string ValueOf(IniFile& file, const char16_t* section, const char16_t* key) {
    char16_t value[1024];
    return file.GetString(section, key, value) == QX_S_OK ? value : u"<none>";
}

// "[section]key=value;key=value;[section]..."
std::u16string TableOf(IniFile& file) {
    std::u16string table;
    for (const std::u16string& section : file.GetSections()) {
        table += u'[' + section + u']';
        for (const std::u16string& key : file.GetKeys(section)) {
            table += key + u'=' + ValueOf(file, section.c_str(), key.c_str()) + u';';
        }
    }
    return table;
}

class IniFileTest : public testing::Test {
  protected:
    TemporaryDirectory m_directory;
    const fs::path m_path = m_directory.Path() / "test.ini";
    const std::u16string m_name = m_path.u16string();
};

const std::string k508(508, 'v');
const std::u16string kWide507(507, u'v');

const struct {
    const char* what;
    std::string file;
    std::u16string table;
} kGrammar[] = {
    {"empty", "", u""},
    {"carriage returns", "[a]\r\nx=1\r\n\r\n[b]\r\ny=\r2\r\r\n", u"[a]x=1;[b]y=\r2\r;"},
    {"the end mark", "[a]\nx=1\n\n\x1A[b]\ny=2\n", u"[a]x=1;"},
    {"comments between sections", "#c\n;c\n:c\nstray=1\n[a]\nx=1\n", u"[a]x=1;"},
    {"a comment inside a section", "[a]\nx=1\n\n[b]\ny=2\n#c\n", u"[a]x=1;"},
    {"an equals sign makes it a key", "[a]\nx=1\n[b=]\n#a=b\n", u"[a]#a=b;[b=];x=1;"},
    {"a space ends the section", "[_]\n x=1\ny=2\n[a]\n\tx=1\n[b]\n\vx=1\n[c]\n\fx=1\n[d]\n\rx=1\n",
     u"[_][a][b][c][d]"},
    {"a last line without an end", "[a]\nx=12", u"[a]x=1;"},
    {"which may be the equals sign", "[a]\nx=", u""},
    {"spaces around", "[ a ]\n k = v\n[b]\nk\t = v = w  \n=\n  =x\n", u"[ a ][b]=;k\t=v = w;"},
    {"the last bracket", "[a] ; note ]\nk=v\n", u"[a] ; note ]k=v;"},
    {"behind the bracket", "[a] note\nk=v\n", u"[a]k=v;"},
    {"no bracket", "[a]\nx=1\n\n[b\ny=2\n", u"[a]x=1;"},
    {"the empty section", "[]\nx=1\n", u"[]x=1;"},
    {"equal keys", "[a]\nKey=1\nother=2\nKEY=3\n", u"[a]Key=3;other=2;"},
    {"equal sections", "[Alpha]\nx=1\n\n[b]\n\n[ALPHA]\ny=2\n", u"[Alpha]y=2;[b]"},
    {"an equal section that is not finished", "[a]\nx=1\n\n[A]\ny=2\nz\n", u"[a]x=1;"},
    {"order", "[b]\n_=1\nB=2\na=3\nab=4\n\n[A]\n", u"[A][b]_=1;a=3;ab=4;B=2;"},
    {"a zero byte ends a line", std::string("[a]\nx=12\0z\ny=2\n\n[b]\n\0x\n", 23),
     u"[a]x=1;y=2;[b]"},
    {"510 bytes with their end", "[a]\nk=" + k508.substr(1) + "\nl=1\n",
     u"[a]k=" + kWide507 + u";l=1;"},
    {"510 bytes and an end", "[a]\nk=" + k508 + "\nl=1\n", u"[a]k=" + kWide507 + u";"},
    {"an equals sign in the rest", "[b]\nk=" + k508 + "vvv=x\n", u"[b]k=" + kWide507 + u";vvv=x;"},
};

TEST_F(IniFileTest, ReadsByItsGrammar) {
    for (const auto& [what, text, table] : kGrammar) {
        WriteFile(m_path, text);
        IniFile file(m_name.c_str());
        EXPECT_EQ(TableOf(file), table) << what;
    }
}

TEST_F(IniFileTest, LineEndsMeanTheSameAtEachPlaceOfALongFile) {
    const std::string line = "key=value\r\n";
    for (std::size_t shift = 0; shift < line.size(); ++shift) {
        std::string text = "[" + std::string(shift, 'a') + "]\r\n";
        while (text.size() < 50'000) {
            text += line + "\r\n[" + std::to_string(text.size()) + "]\r\n";
        }
        WriteFile(m_path, text + line);
        IniFile file(m_name.c_str());
        for (const std::u16string& section : file.GetSections()) {
            ASSERT_EQ(ValueOf(file, section.c_str(), u"key"), u"value") << shift;
        }
    }
}

TEST_F(IniFileTest, ComesBackAsItWasWritten) {
    IniFile file(m_name.c_str());
    for (const char16_t* section : {u"b", u"a\\b", u"", u"A"}) {
        for (const char16_t* key : {u"z", u"", u"Y", u"\u00E4", u"y\u00DF"}) {
            ASSERT_EQ(file.SetString(section, key, section, true), 0);
        }
    }
    IniFile again(m_name.c_str());
    EXPECT_EQ(TableOf(again), TableOf(file));
    EXPECT_EQ(file.GetSections(), (Names{u"", u"A", u"a\\b", u"b"}));
    EXPECT_EQ(file.GetKeys(u"A"), (Names{u"", u"Y", u"y\u00DF", u"z", u"\u00E4"}));
}

TEST_F(IniFileTest, SetStringKeepsSpellingsAndOtherValues) {
    IniFile file(m_name.c_str());
    EXPECT_FALSE(fs::exists(m_path)) << "loading makes no file";
    EXPECT_EQ(file.SetString(u"a", u"e", u"", false), 0);
    EXPECT_EQ(ReadTextFile(m_path), "[a]\ne=\n\n");
    for (const auto& [key, value] :
         {std::pair{u"E", u"long"}, {u"F", u"short"}, {u"D", u"d"}, {u"E", u"1"}}) {
        EXPECT_EQ(file.SetString(u"A", key, value, true), 0);
    }
    fs::remove(m_path);
    EXPECT_EQ(file.SetString(u"A", u"d", u"no", false), -1);
    EXPECT_FALSE(fs::exists(m_path)) << "a refusal writes nothing";
    EXPECT_EQ(file.SetString(u"a", u"d", u"d", true), 0);
    EXPECT_EQ(ReadTextFile(m_path), "[a]\nD=d\ne=1\nF=short\n\n") << "an equal value is written";
    char16_t untouched[] = u"#";
    EXPECT_EQ(file.GetString(u"a", u"none", untouched), QX_E_NOTFOUND);
    EXPECT_EQ(file.GetString(u"none", u"D", untouched), QX_E_NOTFOUND);
    EXPECT_EQ(untouched, std::u16string(u"#"));
}

TEST_F(IniFileTest, ReloadsWhatIsNewerByASecond) {
    // The clock's resolution does not matter.
    fs::file_time_type time = fs::file_time_type::clock::now();
    const auto change = [&](const std::string& value, int seconds) {
        WriteFile(m_path, "[a]\nx=" + value + "\n");
        time += std::chrono::seconds(seconds);
        fs::last_write_time(m_path, time);
    };
    change("1", 0);
    IniFile file(m_name.c_str());
    change("2", 0);
    EXPECT_EQ(ValueOf(file, u"a", u"x"), u"2") << "the first look always loads";
    change("3", 0);
    EXPECT_EQ(ValueOf(file, u"a", u"x"), u"2");
    change("4", 2);
    EXPECT_EQ(ValueOf(file, u"a", u"x"), u"4");
    change("5", -4);
    EXPECT_EQ(ValueOf(file, u"a", u"x"), u"4") << "older: not loaded, but followed";
    change("6", 2);
    EXPECT_EQ(ValueOf(file, u"a", u"x"), u"6");
    fs::remove(m_path);
    EXPECT_EQ(ValueOf(file, u"a", u"x"), u"6") << "a file that is gone leaves the table";
}

TEST_F(IniFileTest, WhatCannotBeReadIsEmptyAndWhatCannotBeWrittenIsNotTold) {
    fs::create_directory(m_path);
    IniFile directory(m_name.c_str());
    EXPECT_EQ(directory.SetString(u"a", u"x", u"1", true), 0);
    EXPECT_EQ(TableOf(directory), u"[a]x=1;");
    IniFile none(nullptr);
    EXPECT_EQ(TableOf(none), u"");
}

std::u16string Rest(IniFileIteratorBase& iterator) {
    std::u16string names;
    while (iterator.HasNext()) {
        names += iterator.Next() + u';';
    }
    EXPECT_THROW(iterator.Next(), EQXCoreException);
    return names;
}

// The children and the keys.
std::u16string NamesAt(IniFile& file, const char16_t* path) {
    IniFileSetIterator children(file, path);
    EXPECT_EQ(children.GetName(), path);
    std::u16string names = Rest(children) + u" ";
    try {
        IniFileKeyIterator keys(file, path);
        return names + Rest(keys);
    } catch (const EQXCoreException& exception) {
        EXPECT_EQ(exception.m_result, QX_E_NOTFOUND);
        return names + u"none";
    }
}

TEST_F(IniFileTest, ChildrenAreFoundByExactSpelling) {
    WriteFile(m_path,
              "[a\\b]\nx=1\nW=2\n\n[a\\b\\c]\n\n[a\\d\\e]\n\n[A\\f]\n\n[a b]\n\n[a\\B\\g]\n\n"
              "[ab\\c]\n\n[r\\]\n\n[r\\\\s]\n\n");
    IniFile file(m_name.c_str());
    EXPECT_EQ(NamesAt(file, u"a"), u"B;b;d; ");
    EXPECT_EQ(NamesAt(file, u"A"), u"f; ");
    EXPECT_EQ(NamesAt(file, u"a\\b"), u"c; W;x;");
    EXPECT_EQ(NamesAt(file, u"A\\B"), u" W;x;");
    EXPECT_EQ(NamesAt(file, u"a\\d\\e"), u" ");
    EXPECT_EQ(NamesAt(file, u"A\\d"), u" none");
    EXPECT_EQ(NamesAt(file, u"r"), u"; ");
    EXPECT_EQ(NamesAt(file, u"r\\"), u"s; ");
    EXPECT_EQ(NamesAt(file, u""), u" none");
    EXPECT_EQ(file.SetString(u"~", u"", u"", true), 0) << "the throwing iterator held nothing back";
}

constexpr int kChanges = 20;

// A look that falls into the second of the object's own last one does not see what others wrote in
// it, and the next write then undoes that. An object without a look behind it sees everything, so
// each change here is made through a new one.
CHILD_ROLE(IniWriter) {
    const std::u16string path = fs::path(arguments[0]).u16string();
    for (int change = 0; change < kChanges; ++change) {
        const std::string key = arguments[1] + "-" + std::to_string(change);
        IniFile file(path.c_str());
        file.SetString(u"shared", std::u16string(key.begin(), key.end()).c_str(), u"x", false);
    }
    return 0;
}

TEST_F(IniFileTest, ProcessesThatChangeOneFileLoseNothing) {
    std::vector<ChildProcess> writers;
    for (const char* const name : {"a", "b", "c", "d"}) {
        writers.emplace_back("IniWriter", ChildProcess::Arguments{m_path.string(), name});
    }
    for (ChildProcess& writer : writers) {
        EXPECT_EQ(writer.Wait(), 0);
    }
    IniFile file(m_name.c_str());
    EXPECT_EQ(file.GetKeys(u"SHARED").size(), std::size_t{4 * kChanges});
}

}  // namespace

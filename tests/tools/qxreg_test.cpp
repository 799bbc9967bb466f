// qxreg: its commands, and the files of registry editors.
#include <gtest/gtest.h>
#include <qxcore.h>
#include <qxreg/failure.h>
#include <qxreg/files.h>
#include <qxreg/program.h>
#include <qxreg/reg_file.h>
#include <qxreg/text.h>
#include <qxreg/tree.h>

#include <iostream>
#include <sstream>

#include "support/system.h"

namespace {

const std::string kFirst = "Windows Registry Editor Version 5.00\r\n";

struct Outcome {
    int m_status;
    std::string m_output;
    std::string m_complaint;
};

Outcome Qxreg(std::vector<std::string> words) {
    std::ostringstream output;
    std::ostringstream complaint;
    std::streambuf* const out = std::cout.rdbuf(output.rdbuf());
    std::streambuf* const err = std::cerr.rdbuf(complaint.rdbuf());
    words.insert(words.begin(), "qxreg");
    std::vector<char*> places;
    for (std::string& word : words) {
        places.push_back(word.data());
    }
    places.push_back(nullptr);
    const int status = RunProgram(static_cast<int>(words.size()), places.data());
    std::cout.rdbuf(out);
    std::cerr.rdbuf(err);
    return {status, output.str(), complaint.str()};
}

std::string Utf16Of(const std::string& text, bool isBig) {
    std::string bytes = BytesOf(u"\uFEFF" + *WideOf(text));
    for (std::size_t i = 0; isBig && i + 1 < bytes.size(); i += 2) {
        std::swap(bytes[i], bytes[i + 1]);
    }
    return bytes;
}

const Key kTop{QX_HKEY_USER, u"QxregTest"};

std::string ExportedTop() {
    return Qxreg({"export", "-u", "-", "user\\QxregTest"}).m_output;
}

class QxregTest : public testing::Test {
  protected:
    std::string File(const char* name) { return (m_registry.Folder() / name).string(); }
    std::string FileOf(const std::string& bytes) {
        WriteFile(File("given.reg"), bytes, false);
        return File("given.reg");
    }

  private:
    OwnRegistry m_registry;
};

TEST_F(QxregTest, StatusAndOutputOfTheCommands) {
    struct Row {
        std::vector<std::string> m_words;
        int m_status;
        std::string m_output;
    };
    const std::string key = "user\\QxregTest";
    const Row rows[] = {
        {{"set", key, "", "REG_SZ", "a\tb\\c\xC3\xA4"}, 0, ""},
        {{"set", key, "n", "dword", "0x10"}, 0, ""},
        {{"get", key, "n"}, 0, "16\n"},
        {{"get", "QX_HKEY_USER\\\\qxregtest\\", "N", "--plain"}, 0, "dword\t16\n"},
        {{"get", key, ""}, 0, "a\tb\\c\xC3\xA4\n"},
        {{"get", "--plain", key, ""}, 0, "string\ta\\tb\\\\c\xC3\xA4\n"},
        {{"set", key + "\\Sub", "0", "expand", ""}, 0, ""},
        {{"set", key + "\\Sub", "b", "binary", "00fF"}, 0, ""},
        {{"set", key + "\\Sub", "e", "expand", "%PATH%"}, 0, ""},
        {{"set", key + "\\Sub", "m", "multi", "one", "two"}, 0, ""},
        {{"get", key + "\\Sub", "m"}, 0, "one\ntwo\n"},
        {{"list", "-p", "-r", key},
         0,
         "key\tuser\\\\QxregTest\n"
         "value\tuser\\\\QxregTest\t\tstring\ta\\tb\\\\c\xC3\xA4\n"
         "value\tuser\\\\QxregTest\tn\tdword\t16\n"
         "key\tuser\\\\QxregTest\\\\Sub\n"
         "value\tuser\\\\QxregTest\\\\Sub\t0\texpand\t\n"
         "value\tuser\\\\QxregTest\\\\Sub\tb\tbinary\t00ff\n"
         "value\tuser\\\\QxregTest\\\\Sub\te\texpand\t%PATH%\n"
         "value\tuser\\\\QxregTest\\\\Sub\tm\tmulti\tone\\0two\n"},
        {{"delete", key}, 1, ""},
        {{"delete", key, "n"}, 0, ""},
        {{"delete", key, "n"}, 1, ""},
        {{"export", File("missing") + "/x", key}, 1, ""},
        {{"delete", "--recursive", key}, 0, ""},
        {{"list", key}, 1, ""},
        {{"import", File("missing")}, 1, ""},
        {{"set", key, "q", "qword", "1"}, 1, ""},
        {{"set", key, "n", "dword", "4294967296"}, 2, ""},
        {{"set", key, "n", "word", "1"}, 2, ""},
        {{"get", "users\\x", "n"}, 2, ""},
        {{"migrate", "ini", "text"}, 2, ""},
        {{"--view=16", "import", "-"}, 2, ""},
        {{}, 2, ""},
    };
    for (const Row& row : rows) {
        const Outcome outcome = Qxreg(row.m_words);
        const std::string which = testing::PrintToString(row.m_words) + outcome.m_complaint;
        EXPECT_EQ(row.m_status, outcome.m_status) << which;
        EXPECT_EQ(row.m_output, outcome.m_output) << which;
        EXPECT_EQ(row.m_status == 0, outcome.m_complaint.empty()) << which;
    }
}

// The same text on each platform, and back from there: a file goes from one to the other.
TEST_F(QxregTest, ExportsTheTextThatEditorsWrite) {
    const std::u16string text = u"\"C:\\x\" \u00E4\U0001F600";
    WriteValue(kTop, {u"", kNativeString, BytesOf(text + u'\0')});
    WriteValue(kTop, {u"a\"b\\c", kNativeDword, {"\x0A\x00\x00\xFF", 4}});
    WriteValue(kTop, {u"b\r\n", kNativeString, BytesOf(std::u16string(u"\r\n\0", 3))});
    WriteValue(kTop, {u"cut", kNativeString, BytesOf(u"x")});
    WriteValue(kTop, {u"d", kNativeString, BytesOf(std::u16string(u"%\xD83D\0", 3))});
    WriteValue(kTop, {u"e", kNativeMulti, BytesOf(std::u16string(u"\0\0", 2))});
    WriteValue(kTop, {u"empty", kNativeBinary, ""});
    WriteValue(kTop, {u"long", kNativeBinary, std::string(24, '\xAB')});
    MakeKey(Beneath(kTop, u"b]\\c"));
    MakeKey(Beneath(kTop, u"c\n"));
    std::string bytes;
    for (int i = 0; i < 24; ++i) {
        bytes += i == 0 ? "ab" : i == 22 ? ",\\\r\n  ab" : ",ab";
    }
    const std::string expected = kFirst +
                                 "\r\n[HKEY_CURRENT_USER\\QxregTest]\r\n"
                                 "@=\"\\\"C:\\\\x\\\" \xC3\xA4\xF0\x9F\x98\x80\"\r\n"
                                 "\"a\\\"b\\\\c\"=dword:ff00000a\r\n"
                                 "\"b\r\n\"=hex(1):0d,00,0a,00,00,00\r\n"
                                 "\"cut\"=hex(1):78,00\r\n"
                                 "\"d\"=hex(1):25,00,3d,d8,00,00\r\n"
                                 "\"e\"=hex(7):00,00,00,00\r\n"
                                 "\"empty\"=hex:\r\n"
                                 "\"long\"=hex:" +
                                 bytes +
                                 "\r\n"
                                 "\r\n[HKEY_CURRENT_USER\\QxregTest\\b]]\r\n"
                                 "\r\n[HKEY_CURRENT_USER\\QxregTest\\b]\\c]\r\n"
                                 "\r\n[\"HKEY_CURRENT_USER\\\\QxregTest\\\\c\n\"]\r\n";
    EXPECT_EQ(expected, ExportedTop());
    EXPECT_EQ(Utf16Of(expected, false), Qxreg({"export", "-", "user\\QxregTest"}).m_output);
    for (const std::string& file :
         {expected, "\xEF\xBB\xBF" + expected, Utf16Of(expected, true), Utf16Of(expected, false)}) {
        DeleteKey(kTop);
        const Outcome outcome = Qxreg({"import", FileOf(file)});
        EXPECT_EQ(0, outcome.m_status) << outcome.m_complaint;
        EXPECT_EQ(expected, ExportedTop());
    }
}

TEST_F(QxregTest, ImportTakesWhatPeopleWrite) {
    WriteValue(Beneath(kTop, u"Old\\Below"), {u"x", kNativeBinary, ""});
    WriteValue(kTop, {u"gone", kNativeBinary, ""});
    const Outcome outcome = Qxreg({"import", FileOf("windows registry editor version 5.00 \n"
                                                    "; comment\n\n"
                                                    "  [-HKEY_CURRENT_USER\\QxregTest\\Old]\n"
                                                    "[-HKEY_CURRENT_USER\\QxregTest\\Never]\n"
                                                    "[hkey_current_user\\QxregTest] ; behind\n"
                                                    "\"gone\"=-\n\"never\" = -\r\n"
                                                    " \"d\" = DWORD:A ; behind\r"
                                                    "\"h\"=hex:1,\\ ; behind\n  02 , \\\n\n"
                                                    "\"t\"=hex(2):61,00,00,00\n"
                                                    "\"two\nlines\"=\"x\r\ny\"")});
    EXPECT_EQ(0, outcome.m_status) << outcome.m_complaint;
    EXPECT_EQ(kFirst +
                  "\r\n[HKEY_CURRENT_USER\\QxregTest]\r\n"
                  "\"d\"=dword:0000000a\r\n\"h\"=hex:01,02\r\n\"t\"=hex(2):61,00,00,00\r\n"
                  "\"two\nlines\"=hex(1):78,00,0d,00,0a,00,79,00,00,00\r\n",
              ExportedTop());
}

TEST_F(QxregTest, NothingIsImportedOfAFileThatIsMalformed) {
    const std::string good = kFirst + "[HKEY_CURRENT_USER\\QxregTest]\n@=\"x\"\n";
    struct Row {
        std::string m_text;
        const char* m_complaint;
    };
    const Row rows[] = {
        {"", "line 1: "},
        {"\xFF\xFEx", "cut short"},
        {good + "\xFF", "UTF-8"},
        {good + "\"a=", "line 4: quotes"},
        {good + "\"a\"=\"\\x\"", "line 4: in quotes"},
        {good + "\"a\"=\"x\" y", "line 4: something"},
        {good + "\"a\"=dword:123456789", "line 4: "},
        {good + "\"a\"=hex:100", "line 4: a byte"},
        {good + "\"a\"=text", "line 4: data"},
        {good + "[HKEY_USERS\\x]", "line 4: the root"},
        {good + "[-HKEY_CURRENT_USER]", "line 4: a root"},
        {good + "[-HKEY_CURRENT_USER\\x]\n@=\"y\"", "line 5: a value"},
        {good + std::string("\"a\"=\"\0\"", 7), "line 4: a zero"},
        {good + "\"q\"=hex(b):01,00,00,00,00,00,00,00", "line 4: the type qword"},
        {good + "\"q\"=hex(0):", "line 4: the type none"},
    };
    for (const Row& row : rows) {
        const Outcome outcome = Qxreg({"import", FileOf(row.m_text)});
        EXPECT_EQ(1, outcome.m_status) << row.m_text;
        EXPECT_NE(outcome.m_complaint.npos, outcome.m_complaint.find(row.m_complaint))
            << row.m_text << outcome.m_complaint;
        EXPECT_FALSE(HasKey(kTop)) << row.m_text;
    }
    EXPECT_EQ(1, Qxreg({"import", "-k", FileOf(good + "\"q\"=hex(b):\n\"z\"=dword:1")}).m_status);
    EXPECT_EQ(2u, ValuesOf(kTop).size());
}

TEST(QxregFile, TellsTheViewOfAKey) {
    const std::vector<Key> keys = {{QX_HKEY_CLASSES, u"x"},
                                   {QX_HKEY_CONFIG, u"Software\\x"},
                                   {QX_HKEY_CONFIG_64, u"Software\\WOW6432Node\\x"},
                                   {QX_HKEY_USER, u"x"},
                                   {QX_HKEY_CLASSES_64, u"WOW6432Node"}};
    RegWriter writer;
    for (const Key& key : keys) {
        writer.AddKey(key, {});
    }
    std::vector<Key> read;
    for (const RegKey& key : ParseRegFile(writer.Encode(RegEncoding::kUtf8), 0)) {
        read.push_back(key.m_key);
    }
    EXPECT_EQ(keys, read);
    const auto keyOf = [](const char* name, int view) {
        return ParseRegFile(kFirst + "[" + name + "]", view).at(0).m_key;
    };
    const char* const software = "HKEY_LOCAL_MACHINE\\Software\\x";
    EXPECT_EQ(keyOf(software, 0), (Key{QX_HKEY_CONFIG_64, u"Software\\x"}));
    EXPECT_EQ(keyOf(software, 32), (Key{QX_HKEY_CONFIG, u"Software\\x"}));
    EXPECT_EQ(keyOf("HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node", 0),
              (Key{QX_HKEY_CONFIG, u"SOFTWARE"}));
    EXPECT_EQ(keyOf("HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Nodes", 0),
              (Key{QX_HKEY_CONFIG_64, u"SOFTWARE\\Wow6432Nodes"}));
    const char* const node = "HKEY_CLASSES_ROOT\\WOW6432Node\\x";
    EXPECT_EQ(keyOf(node, 0), (Key{QX_HKEY_CLASSES, u"x"}));
    EXPECT_EQ(keyOf(node, 64), (Key{QX_HKEY_CLASSES_64, u"WOW6432Node\\x"}));
}

}  // namespace

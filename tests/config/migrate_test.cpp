#include <qxcore/system.h>

#include "config/registry_support.h"
#include "support/allocation_fault.h"
#include "support/failure.h"

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kNative = QX_REGSTORE_NATIVE;
constexpr uint32_t kIni = QX_REGSTORE_INI;

QXResult Migrate(uint32_t source, uint32_t destination) {
    return QXRegistryMigrate(source, 0, destination, 0);
}

// Everything happens in a directory of the test's own.
class Migration : public Registry {
  protected:
    Migration() { fs::current_path(m_directory.Path()); }
    ~Migration() override { fs::current_path(m_before); }

    static void Write(const std::string& bytes) { WriteFile("qxregistry.ini", bytes); }
    static std::string Read() { return ReadTextFile("qxregistry.ini"); }
    static bool FileIsThere() { return fs::exists("qxregistry.ini"); }
    // "QX_HKEY_USER\name".
    static std::string UserSection() {
        char16_t name[127];
        EXPECT_EQ(QXGetUserName(name, 127), 0);
        return "QX_HKEY_USER\\" + fs::path(name).string();
    }

  private:
    const fs::path m_before = fs::current_path();
    TemporaryDirectory m_directory;
};

TEST_F(Migration, MovesEachRootFromTheFileToTheRegistry) {
    if (!kOwnRegistryHasViews) {
        GTEST_SKIP() << "a registry of the test's own has no views there";
    }
    ASSERT_EQ(SetText(u"k", u"there", u"old", QX_HKEY_CONFIG), 0);
    ASSERT_EQ(SetText(u"k", u"Mine", u"kept", QX_HKEY_CONFIG), 0);
    Write(
        "[QX_HKEY_CLASSES]\r\n=zero\r\n\r\n"
        "[QX_HKEY_CLASSES_64\\a\\b]\r\nn=three\r\n\r\n"
        "[QX_HKEY_CONFIG\\K]\nTHERE=new\n\n"
        "[QX_HKEY_CONFIG_64\\a]\nn=four\n\n"
        "[QX_HKEY_CONFIG_64\\empty]\n\n"
        "[" +
        UserSection() +
        "\\a]\nn=two\n\n"
        "[QX_HKEY_USER\\somebody else\\a]\nm=x\n\n"
        "[qx_hkey_config\\b]\nn=x\n\n"
        "[stray\\a]\nn=x\n\n");
    EXPECT_EQ(Migrate(kIni, kNative), QX_S_OK);
    EXPECT_FALSE(FileIsThere());
    constexpr char16_t kNone[] = u"<not found>";
    EXPECT_EQ(Text(u"", u"", QX_HKEY_CLASSES), u"zero");
    EXPECT_EQ(Text(u"a\\b", u"n", QX_HKEY_CLASSES), kNone);
    EXPECT_EQ(Text(u"a\\b", u"n", QX_HKEY_CLASSES_64), u"three");
    EXPECT_EQ(Text(u"k", u"there", QX_HKEY_CONFIG), u"new");
    EXPECT_EQ(Text(u"k", u"Mine", QX_HKEY_CONFIG), u"kept");
    EXPECT_EQ(Text(u"b", u"n", QX_HKEY_CONFIG), kNone);
    EXPECT_EQ(Text(u"a", u"n", QX_HKEY_CONFIG_64), u"four");
    EXPECT_EQ(Text(u"a", u"n"), u"two");
    EXPECT_EQ(Text(u"a", u"m"), kNone);
    EXPECT_EQ(SubkeysOf(u"", QX_HKEY_CONFIG_64), (std::vector<std::u16string>{u"a"}));
    uint32_t length = 0;
    EXPECT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"a", u"n", nullptr, nullptr, &length), QX_S_OK);
    EXPECT_EQ(length, 8u) << "with its terminator";
}

TEST_F(Migration, RefusesUnknownKindsAloneAndEndsWithoutTheFile) {
    EXPECT_EQ(Migrate(kNative, kIni), QX_S_OK) << "an empty registry is no failure";
    EXPECT_FALSE(FileIsThere());
    const std::string text = "[QX_HKEY_CONFIG]\nx=1\n\n";
    Write(text);
    for (const auto& [source, destination] :
         {std::pair{kNative, 5u}, {5u, kNative}, {kIni, 2u}, {2u, 2u}, {0xFFFFFFFF, kIni}}) {
        const ErrnoStays errnoStays;
        EXPECT_EQ(Migrate(source, destination), QX_E_BADKEY);
    }
    EXPECT_EQ(Read(), text);
    EXPECT_EQ(Migrate(kIni, kIni), QX_S_OK);
    EXPECT_FALSE(FileIsThere());
    EXPECT_EQ(Migrate(kIni, kNative), QX_S_OK) << "a file that is not there is an empty one";
    EXPECT_NE(Exists(QX_HKEY_CONFIG, u"", u"x"), QX_S_OK);
    fs::create_directory("qxregistry.ini");
    EXPECT_EQ(Migrate(kIni, kNative), QX_S_OK);
    EXPECT_TRUE(FileIsThere()) << "a directory is not deleted";
}

TEST_F(Migration, FromTheRegistryToTheFileMovesTextAlone) {
    if (!kOwnRegistryHasViews) {
        GTEST_SKIP() << "a registry of the test's own has no views there";
    }
    const std::u16string longText(1024, u'x');
    ASSERT_EQ(SetText(u"a\\b", u"n", u"deep", QX_HKEY_CONFIG), 0);
    ASSERT_EQ(SetText(u"a", u"n", u"text", QX_HKEY_USER), 0);
    ASSERT_EQ(SetText(u"a", u"long", longText, QX_HKEY_USER), 0);
    ASSERT_EQ(SetText(u"a", u"many", u"texts", QX_HKEY_USER, QX_REG_MULTI_STRING), 0);
    ASSERT_EQ(SetText(u"a", u"bytes", u"b", QX_HKEY_USER, QX_REG_BINARY), 0);
    ASSERT_EQ(SetText(u"a", u"last", u"e%%", QX_HKEY_USER, QX_REG_EXPAND_STRING), 0);
    ASSERT_EQ(QXRegistrySetValue(QX_HKEY_USER, u"a", u"bare", QX_REG_STRING, u"abc", 4), 0);
    Write("[QX_HKEY_CONFIG]\nx=1\n\n");
    EXPECT_EQ(Migrate(kNative, kIni), QX_S_OK);
    EXPECT_EQ(Read(), "[QX_HKEY_CONFIG]\nx=1\n\n[QX_HKEY_CONFIG\\a\\b]\nn=deep\n\n[" +
                          UserSection() + "\\a]\nbare=ab\nlast=e%%\nn=text\n\n");
    EXPECT_EQ(Text(u"a", u"n"), u"text") << "the source stays";
    ASSERT_EQ(QXRegistryDeleteKey(QX_HKEY_USER, u"a"), 0);
    EXPECT_EQ(Migrate(kIni, kNative), QX_S_OK);
    EXPECT_EQ(Text(u"a", u"last"), u"e%%");
    EXPECT_EQ(Text(u"a\\b", u"n", QX_HKEY_CONFIG), u"deep");
}

TEST_F(Migration, WalksEndAtNamesThatAreTooLongAndAtRootsBelowThemselves) {
    const std::string longName(256, 'm');
    Write(
        "[QX_HKEY_CONFIG\\]\nx=1\n\n"
        "[QX_HKEY_CONFIG\\a\\]\nx=2\n\n"
        "[QX_HKEY_CONFIG\\k\\a]\nx=3\n\n"
        "[QX_HKEY_CONFIG\\k\\" +
        longName +
        "]\nx=4\n\n"
        "[QX_HKEY_CONFIG\\k\\z]\nx=5\n\n"
        "[QX_HKEY_CONFIG\\l]\na=6\n" +
        longName + "=7\nz=8\n\n");
    EXPECT_EQ(Migrate(kIni, kNative), QX_S_OK);
    EXPECT_NE(Exists(QX_HKEY_CONFIG, u"", u"x"), QX_S_OK);
    EXPECT_EQ(Text(u"a", u"x", QX_HKEY_CONFIG), u"2");
    EXPECT_EQ(SubkeysOf(u"k", QX_HKEY_CONFIG), (std::vector<std::u16string>{u"a"}));
    EXPECT_EQ(Text(u"l", u"a", QX_HKEY_CONFIG), u"6");
    EXPECT_EQ(Text(u"l", u"z", QX_HKEY_CONFIG), u"<not found>");
}

TEST_F(Migration, AFailureHoldsNothingBackAndLeavesTheFile) {
    const std::string text = "[QX_HKEY_CONFIG\\a]\nx=1\n\n[QX_HKEY_CONFIG_64\\a\\b]\ny=2\n\n";
    bool struck = true;
    int failed = 0;
    for (int n = 1; struck; ++n) {
        Write(text);
        FailAllocation(n);
        const QXResult result = Migrate(kIni, kNative);
        struck = AllocationHasFailed();
        FailAllocation(0);
        EXPECT_EQ(FileIsThere(), result != QX_S_OK) << n;
        failed += result == QX_E_OUTOFMEMORY ? 1 : 0;
    }
    EXPECT_GT(failed, 10);
    EXPECT_FALSE(FileIsThere());
    EXPECT_EQ(Text(u"a\\b", u"y", QX_HKEY_CONFIG_64), u"2");
}

}  // namespace

// qxreg's backup of a whole store.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <qxcore.h>
#include <unistd.h>

#include "support/child_role.h"
#include "support/system.h"

namespace {

uint32_t NumberOf(const wchar* name) {
    uint32_t number = 0;
    uint32_t size = sizeof number;
    EXPECT_EQ(QX_S_OK, QXRegistryGetValue(QX_HKEY_USER, u"Pair", name, nullptr, &number, &size));
    return number;
}

bool SetNumber(const wchar* name, uint32_t number) {
    return QX_SUCCEEDED(
        QXRegistrySetValue(QX_HKEY_USER, u"Pair", name, QX_REG_DWORD, &number, sizeof number));
}

// Writes the first number of a pair and then the second, until its input ends.
CHILD_ROLE(PairWriter) {
    uint32_t number = 0;
    bool isWritten = SetNumber(u"a", 0) && SetNumber(u"b", 0);
    std::puts("ready");
    std::fflush(stdout);
    ::fcntl(STDIN_FILENO, F_SETFL, O_NONBLOCK);
    char byte;
    while (isWritten && ::read(STDIN_FILENO, &byte, 1) != 0) {
        ++number;
        isWritten = SetNumber(u"a", number) && SetNumber(u"b", number);
    }
    return isWritten ? 0 : 1;
}

int Qxreg(const ChildProcess::Arguments& arguments) {
    return ChildProcess::OfProgram(QXREG, arguments).Wait();
}

TEST(QxregStore, ABackupIsOfOneMomentWhileOthersWrite) {
    const OwnRegistry registry;
    const std::string file = registry.Folder() / "backup";
    uint32_t last = 0;
    for (int round = 0; round < 5; ++round) {
        ChildProcess writer("PairWriter");
        ASSERT_EQ("ready", writer.ReadLine());
        ASSERT_EQ(0, Qxreg({"backup", file}));
        EXPECT_EQ(0, writer.Wait());
        const uint32_t now = NumberOf(u"a");
        ASSERT_EQ(0, Qxreg({"restore", file}));
        EXPECT_LE(NumberOf(u"a") - NumberOf(u"b"), 1u);
        EXPECT_LE(NumberOf(u"a"), now);
        last = NumberOf(u"a");
    }
    // Who writes meanwhile goes on, in the same file.
    ChildProcess writer("PairWriter");
    ASSERT_EQ("ready", writer.ReadLine());
    EXPECT_EQ(0, Qxreg({"restore", file}));
    EXPECT_EQ(0, writer.Wait());
    ASSERT_EQ(0, Qxreg({"restore", file}));
    EXPECT_EQ(last, NumberOf(u"a"));
}

TEST(QxregStore, ARestoreTakesOnlyABackupOfThatStore) {
    const OwnRegistry registry;
    const std::string folder = registry.Folder();
    EXPECT_EQ(1, Qxreg({"backup", folder + "/none"}));
    ASSERT_TRUE(SetNumber(u"a", 7));
    ASSERT_EQ(0, Qxreg({"backup", folder + "/good"}));
    const std::string good = ReadFile(folder + "/good");
    WriteFile(folder + "/text", std::string(8192, 'x'));
    WriteFile(folder + "/empty", "");
    WriteFile(folder + "/damaged", good.substr(0, 4096) + std::string(good.size() - 4096, '\x55'));
    for (const char* name : {"/missing", "/text", "/empty", "/damaged"}) {
        EXPECT_EQ(1, Qxreg({"restore", folder + name})) << name;
    }
    EXPECT_EQ(1, Qxreg({"restore", "--machine", folder + "/good"}));
    EXPECT_EQ(7u, NumberOf(u"a"));
    EXPECT_FALSE(std::filesystem::exists(folder + "/machine.db"));
    // A store that is gone comes back.
    for (const char* name : {"/user.db", "/user.db-wal", "/user.db-shm"}) {
        std::filesystem::remove(folder + name);
    }
    ASSERT_EQ(0, Qxreg({"restore", folder + "/good"}));
    EXPECT_EQ(0, Qxreg({"get", "user\\Pair", "a"}));
    // A file of something else is not overwritten.
    WriteFile(folder + "/machine.db", "something else");
    EXPECT_EQ(1, Qxreg({"backup", "--machine", folder + "/other"}));
}

// A number that was given after the backup: who still holds it must not meet another key.
TEST(QxregStore, NoNumberOfAKeyIsGivenAgainByARestore) {
    const OwnRegistry registry;
    const std::string file = registry.Folder() / "backup";
    ASSERT_TRUE(SetNumber(u"a", 1));
    ASSERT_EQ(0, Qxreg({"backup", file}));
    ASSERT_EQ(QX_S_OK, QXRegistrySetValue(QX_HKEY_USER, u"Later", u"x", QX_REG_BINARY, "", 0));
    QXHandle values;
    ASSERT_EQ(QX_S_OK, QXRegistryOpenValueEnum(QX_HKEY_USER, u"Later", &values));
    ASSERT_EQ(0, Qxreg({"restore", file}));
    ASSERT_EQ(QX_S_OK, QXRegistrySetValue(QX_HKEY_USER, u"Other", u"x", QX_REG_BINARY, "", 0));
    wchar name[8];
    uint32_t units = 8;
    uint32_t type;
    uint32_t size = 0;
    EXPECT_EQ(QX_E_FAIL, QXRegistryEnumNextValue(values, name, &units, &type, nullptr, &size));
    QXRegistryCloseEnum(values);
}

}  // namespace

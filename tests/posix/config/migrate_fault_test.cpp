// Rights and killed processes.
#include <fcntl.h>
#include <qxcore/named_semaphore.h>
#include <qxcore/registry.h>
#include <qxcore/result.h>
#include <sys/stat.h>
#include <unistd.h>

#include "config/registry_support.h"
#include "posix/support/forked_child.h"

namespace {

namespace fs = std::filesystem;

constexpr uid_t kNobody = 65534;
constexpr unsigned kLimit = 60;  // seconds, against a hang
const std::string kText = "[QX_HKEY_CONFIG\\a]\nx=1\n\n";

QXResult Migrate(uint32_t source, uint32_t destination) {
    return QXRegistryMigrate(source, 0, destination, 0);
}

class MigrationFault : public Registry {
  protected:
    MigrationFault() {
        fs::current_path(m_directory.Path());
        ::chmod(".", 0755);
        ::chmod(m_registry.Folder().c_str(), 0777);
        WriteFile("qxregistry.ini", kText);
    }
    ~MigrationFault() override { fs::current_path("/"); }

    static std::string Read() { return ReadFile("qxregistry.ini"); }

  private:
    TemporaryDirectory m_directory;
};

int RunAsNobody(QXResult (*body)()) {
    return ForkedChild([&] { return ::setuid(kNobody) == 0 && body() == QX_S_OK ? 0 : 1; }).Wait();
}

TEST_F(MigrationFault, WhatMayNotBeWrittenStaysAndIsNotTold) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    const auto toItself = [] { return Migrate(QX_REGSTORE_INI, QX_REGSTORE_INI); };
    const auto toRegistry = [] { return Migrate(QX_REGSTORE_INI, QX_REGSTORE_NATIVE); };
    EXPECT_EQ(RunAsNobody(toItself), 0) << "the directory is another user's";
    EXPECT_EQ(RunAsNobody(toRegistry), 0);
    EXPECT_EQ(Read(), kText);
    EXPECT_EQ(Text(u"a", u"x", QX_HKEY_CONFIG), u"1");

    ::chmod(".", 0777);
    ::chmod("qxregistry.ini", 0444);
    EXPECT_EQ(RunAsNobody(toItself), 0) << "the file is read-only";
    EXPECT_EQ(RunAsNobody(toRegistry), 0);
    EXPECT_EQ(Read(), kText) << "neither written nor deleted";

    ::chmod("qxregistry.ini", 0);
    EXPECT_EQ(RunAsNobody(toRegistry), 0) << "a file that cannot be read is an empty one";
    ::chmod("qxregistry.ini", 0444);
    EXPECT_EQ(Read(), kText);
}

TEST_F(MigrationFault, ARegistryThatRefusesValuesLosesThem) {
    ::setenv("W64QXCORE6_REGISTRY", File("missing").c_str(), 1);
    EXPECT_EQ(Migrate(QX_REGSTORE_INI, QX_REGSTORE_NATIVE), QX_S_OK);
    EXPECT_EQ(Exists(QX_HKEY_CONFIG, u"a", u"x"), QX_E_NOTFOUND);
    EXPECT_FALSE(fs::exists("qxregistry.ini"));
}

TEST_F(MigrationFault, APipeInTheFilesPlaceHoldsNobodyUp) {
    fs::remove("qxregistry.ini");
    ASSERT_EQ(::mkfifo("qxregistry.ini", 0666), 0);
    ::alarm(kLimit);
    EXPECT_EQ(Migrate(QX_REGSTORE_NATIVE, QX_REGSTORE_INI), QX_S_OK);
    EXPECT_EQ(Migrate(QX_REGSTORE_INI, QX_REGSTORE_NATIVE), QX_S_OK);
    ::alarm(0);
}

int HoldAndBeKilled() {
    QXHandle semaphore;
    if (QXNamedSemOpen("QXCore_IniFileLock", 1, &semaphore) != 0 ||
        QXNamedSemWait(semaphore) != 0) {
        return 1;
    }
    ::raise(SIGKILL);
    return 2;
}

TEST_F(MigrationFault, AHolderThatWasKilledHoldsNobodyUp) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can have named objects of its own";
    }
    constexpr int kUnavailable = 77;
    const int code = ForkedChild([] {
                         // A killed holder would stop everybody who uses the semaphore meanwhile.
                         if (!MountForThisProcess("/dev/shm", "mode=1777")) {
                             return kUnavailable;
                         }
                         if (ForkedChild(HoldAndBeKilled).Wait() != -1) {
                             return 1;
                         }
                         ::alarm(kLimit);
                         return Migrate(QX_REGSTORE_INI, QX_REGSTORE_NATIVE) == QX_S_OK ? 0 : 2;
                     }).Wait();
    if (code == kUnavailable) {
        GTEST_SKIP() << "no mounts here";
    }
    EXPECT_EQ(code, 0);
    EXPECT_FALSE(fs::exists("qxregistry.ini"));
}

}  // namespace

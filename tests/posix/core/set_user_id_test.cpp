// A program that runs with more rights than its caller, who makes its environment.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "posix/support/forked_child.h"
#include "support/temporary_directory.h"

namespace {

int RunAsNobody(const std::filesystem::path& program) {
    return ForkedChild([&] {
               ::setenv("QXCORE_PROBE", "the caller's", 1);
               if (::setuid(65534) == 0) {
                   ::execl(program.c_str(), program.c_str(), nullptr);
               }
               return 100;
           })
        .Wait();
}

TEST(SetUserId, ExpandsNoReferenceToTheCallersEnvironment) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    const TemporaryDirectory directory;
    const std::filesystem::path program = directory.Path() / "probe";
    std::filesystem::copy_file(QXCORE_SET_USER_ID_PROBE, program);
    ::chmod(directory.Path().c_str(), 0755);
    ::chmod(program.c_str(), 0755);
    EXPECT_EQ(RunAsNobody(program), 1);
    ::chmod(program.c_str(), 04755);
    const int code = RunAsNobody(program);
    if (code == 1) {
        GTEST_SKIP() << "the file system grants no rights";
    }
    EXPECT_EQ(code, 2);
}

}  // namespace

#include <fcntl.h>
#include <gtest/gtest.h>
#include <qxcore/line_file.h>
#include <unistd.h>

#include <string>

#include "support/temporary_directory.h"

namespace {

std::string Target(int descriptor) {
    char target[4096] = {};
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    return readlink(link.c_str(), target, sizeof target - 1) > 0 ? target : "";
}

TEST(LineFileDescriptor, IsNoStandardOneAndNotInherited) {
    const TemporaryDirectory directory;
    const std::string path = (directory.Path() / "lines").string();
    const int standardInput = dup(0);
    close(0);
    UFILE* const file = QXFileOpenUTF16(path.c_str(), "w+");
    int found = -1;
    for (int descriptor = 0; descriptor < 64; ++descriptor) {
        found = Target(descriptor) == path ? descriptor : found;
    }
    const std::string inPlaceOfInput = Target(0);
    dup2(standardInput, 0);
    close(standardInput);
    ASSERT_NE(file, nullptr);
    EXPECT_NE(inPlaceOfInput, path);
    EXPECT_GE(found, 3);
    EXPECT_EQ(fcntl(found, F_GETFD), FD_CLOEXEC);
    EXPECT_EQ(QXFileWriteLineUTF16(u"x", file), 3);
    QXFileCloseUTF16(file);
    EXPECT_EQ(fcntl(found, F_GETFD), -1);
}

}  // namespace

// How often the library looks at the files of its store: this program's own call counts.
#include <fcntl.h>
#include <sys/stat.h>

#include "config/registry_support.h"

namespace {

int s_looks = 0;

}  // namespace

extern "C" int lstat(const char* path, struct stat* status) noexcept {
    ++s_looks;
    return ::fstatat(AT_FDCWD, path, status, AT_SYMLINK_NOFOLLOW);
}

namespace {

using RegistryLook = Registry;

// Once a second before reads. No machine needs a second for each.
TEST_F(RegistryLook, IsTakenBeforeEachWriteAndBeforeFewReads) {
    ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
    Text(u"k", u"v");
    s_looks = 0;
    for (int round = 0; round < 100; ++round) {
        ASSERT_EQ(Text(u"k", u"v"), u"text");
    }
    EXPECT_LT(s_looks, 100);
    s_looks = 0;
    for (int round = 0; round < 10; ++round) {
        ASSERT_EQ(SetText(u"k", u"v", u"text"), 0);
    }
    EXPECT_GE(s_looks, 10);
}

}  // namespace

// The password database of this program stands in for the system's, in the library too.
#include <pwd.h>
#include <qxcore/system.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "config/registry_support.h"
#include "support/failure.h"

namespace {

std::size_t s_size = 0;  // bytes of the entry
int s_failure = 0;
std::string s_home;
const char* s_name = "somebody";

}  // namespace

extern "C" int getpwuid_r(uid_t, passwd* entry, char* buffer, std::size_t size, passwd** found) {
    *found = nullptr;
    if (s_failure != 0 || size < s_size) {
        return s_failure != 0 ? s_failure : ERANGE;
    }
    if (s_name == nullptr) {
        return 0;
    }
    std::memcpy(buffer, s_home.c_str(), s_home.size() + 1);
    *entry = {};
    entry->pw_dir = buffer;
    entry->pw_name = std::strcpy(buffer + s_home.size() + 1, s_name);
    *found = entry;
    return 0;
}

namespace {

TEST(PasswordEntry, NamesTheUserWhateverItsSizeAndTheEnvironment) {
    SetEnvironment("USER", "another");
    SetEnvironment("LOGNAME", "another");
    wchar name[20] = {};
    for (const std::size_t size : {1024, 1025, 70'000}) {
        s_size = size;
        EXPECT_EQ(QXGetUserName(name, 20), QX_S_OK);
        EXPECT_EQ(std::u16string(name), u"somebody") << size;
    }
    s_name = nullptr;
    EXPECT_EQ(QXGetUserName(name, 20), QX_S_OK);
    const std::string number = std::to_string(geteuid());
    EXPECT_EQ(std::u16string(name), std::u16string(number.begin(), number.end()));
    for (const int failure : {EMFILE, EIO, ERANGE}) {
        s_failure = failure;
        name[0] = u'x';
        const ErrnoStays errnoStays;
        EXPECT_LT(QXGetUserName(name, 20), 0);
        EXPECT_EQ(name[0], u'x');
    }
}

TEST_F(Registry, StandsInTheHomeOfAnEntryThatNeedsALargerBuffer) {
    for (const char* name : {"W64QXCORE6_REGISTRY", "HOME", "XDG_CONFIG_HOME"}) {
        UnsetEnvironment(name);
    }
    s_home = m_registry.Folder();
    s_size = 70'000;
    EXPECT_EQ(SetText(u"k", u"v", u"text"), 0);
    EXPECT_TRUE(std::filesystem::exists(File(".config/w64qxcore6/user.db")));
}

}  // namespace

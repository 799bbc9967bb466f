// Where the store stands: places that cannot be found, that move, that are too long.
#include <fcntl.h>
#include <pthread.h>
#include <sys/resource.h>

#include "config/registry_support.h"
#include "posix/support/forked_child.h"

namespace {

namespace fs = std::filesystem;
using RegistryPlace = Registry;

// With the limit at what is open now.
class NoDescriptors {
  public:
    NoDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &m_before);
        const int next = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
        ::close(next);
        const rlimit none = {static_cast<rlim_t>(next), m_before.rlim_max};
        ::setrlimit(RLIMIT_NOFILE, &none);
    }
    ~NoDescriptors() { ::setrlimit(RLIMIT_NOFILE, &m_before); }

  private:
    rlimit m_before;
};

TEST_F(RegistryPlace, WhatCouldNotBeFoundOnceIsLookedForAgain) {
    ::unsetenv("W64QXCORE6_REGISTRY");
    ::unsetenv("HOME");
    ::unsetenv("XDG_CONFIG_HOME");
    {
        const NoDescriptors none;
        EXPECT_EQ(Exists(QX_HKEY_USER, u"k", u"v"), QX_E_FAIL);
        EXPECT_EQ(SetText(u"k", u"v", u"text"), QX_E_FAIL);
    }
    ::setenv("XDG_CONFIG_HOME", File("late").c_str(), 1);
    EXPECT_EQ(SetText(u"k", u"v", u"text"), 0);
    EXPECT_EQ(Text(u"k", u"v"), u"text");
}

TEST_F(RegistryPlace, ARelativeHomeDoesNotCount) {
    ::unsetenv("W64QXCORE6_REGISTRY");
    fs::create_directories(File("relative/.config"));
    ::setenv("XDG_CONFIG_HOME", File("relative/.config").c_str(), 1);
    ASSERT_EQ(ForkedChild([] { return SetText(u"qxcore test", u"v", u"text"); }).Wait(), 0);
    ::unsetenv("XDG_CONFIG_HOME");
    ::setenv("HOME", "relative", 1);
    fs::current_path(m_registry.Folder());
    EXPECT_NE(Exists(QX_HKEY_USER, u"qxcore test", u"v"), 0);
}

TEST_F(RegistryPlace, APathThatIsTooLongIsAnErrorAndLeavesNothing) {
    fs::path place = m_registry.Folder();
    while (place.native().size() + 9 <= 504) {
        place /= std::string(60, 'd');
    }
    fs::create_directories(place);
    ::setenv("W64QXCORE6_REGISTRY", place.c_str(), 1);
    errno = ENOENT;
    EXPECT_EQ(SetText(u"k", u"v", u"text"), QX_E_FAIL);
    EXPECT_EQ(Exists(QX_HKEY_USER, u"k", u"v"), QX_E_FAIL);
    EXPECT_TRUE(fs::is_empty(place));
}

TEST_F(RegistryPlace, ADeepTreeIsDeletedOnASmallStack) {
    std::u16string path = u"k";
    for (int depth = 1; depth < 512; ++depth) {
        path += u"\\k";
    }
    ASSERT_EQ(SetText(path.c_str(), u"v", u"text"), 0);
    pthread_attr_t attributes;
    ::pthread_attr_init(&attributes);
    ASSERT_EQ(::pthread_attr_setstacksize(&attributes, 128 * 1024), 0);
    const auto remove = [](void*) -> void* {
        return reinterpret_cast<void*>(intptr_t{QXRegistryDeleteKey(QX_HKEY_USER, u"k")});
    };
    pthread_t thread;
    ASSERT_EQ(::pthread_create(&thread, &attributes, remove, nullptr), 0);
    void* result = nullptr;
    ::pthread_join(thread, &result);
    ::pthread_attr_destroy(&attributes);
    EXPECT_EQ(result, nullptr);
    EXPECT_TRUE(SubkeysOf(u"").empty());
}

}  // namespace

// The library is opened and closed here beside forks, and beside a copy of itself.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <qxcore/registry.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "posix/support/forked_child.h"
#include "support/system.h"

namespace {

TEST(UnloadBesideForks, LeavesNoForkInCodeThatIsGone) {
    std::atomic<bool> done{false};
    std::thread loader([&] {
        while (!done) {
            void* const library = ::dlopen(QXCORE_LIBRARY, RTLD_NOW);
            ASSERT_NE(library, nullptr);
            ::dlclose(library);
        }
    });
    {
        const auto fork = [] {
            for (int i = 0; i < 200; ++i) {
                EXPECT_EQ(ForkedChild([] { return 0; }).Wait(), 0);
            }
        };
        const std::jthread others[] = {std::jthread(fork), std::jthread(fork), std::jthread(fork)};
    }
    done = true;
    loader.join();
}

// Opened so that the program finds the copy's names first. At the end of a process what other
// threads may use is left standing, but this is no end.
TEST(UnloadBesideACopy, LeavesNothingBehind) {
    const OwnRegistry registry;
    const std::filesystem::path copy = registry.Folder() / "libcopy.so";
    std::filesystem::copy_file(std::filesystem::canonical(QXCORE_LIBRARY), copy);
    void* const first = ::dlopen(copy.c_str(), RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(first, nullptr) << ::dlerror();
    std::atomic<bool> done{false};
    std::thread other([&] { done.wait(false); });
    std::size_t settled = 0;
    for (int round = 0; round < 10; ++round) {
        void* const library = ::dlopen(QXCORE_LIBRARY, RTLD_NOW);
        const auto set =
            reinterpret_cast<decltype(&QXRegistrySetValue)>(::dlsym(library, "QXRegistrySetValue"));
        EXPECT_EQ(set(QX_HKEY_USER, u"k", u"v", QX_REG_BINARY, "", 0), 0);
        ::dlclose(library);
        settled = round == 0 ? MeasureFootprint().handles : settled;
    }
    EXPECT_EQ(MeasureFootprint().handles, settled);
    done = true;
    done.notify_all();
    other.join();
    ::dlclose(first);
}

}  // namespace

// The library is opened and closed here beside forks, and beside a copy of itself.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <thread>

#include "posix/support/forked_child.h"
#include "support/system.h"

namespace {

namespace fs = std::filesystem;

TEST(UnloadBesideForks, LeavesNoForkInCodeThatIsGone) {
    std::atomic<bool> done{false};
    std::thread loader([&] {
        while (!done) {
            void* const library = ::dlopen(QXCORE_LIBRARY, RTLD_NOW);
            ASSERT_NE(library, nullptr);
            ::dlclose(library);
        }
    });
    const auto fork = [] {
        for (int i = 0; i < 200; ++i) {
            EXPECT_EQ(ForkedChild([] { return 0; }).Wait(), 0);
        }
    };
    std::thread others[] = {std::thread(fork), std::thread(fork), std::thread(fork)};
    for (std::thread& other : others) {
        other.join();
    }
    done = true;
    loader.join();
}

// Opened so that the program finds the copy's names first. At the end of a process what other
// threads may use is left standing, but this is no end.
TEST(UnloadBesideACopy, LeavesNothingBehind) {
    const OwnRegistry registry;
    const fs::path copy = registry.Folder() / "libcopy.so";
    fs::copy_file(fs::canonical(QXCORE_LIBRARY), copy);
    void* const first = ::dlopen(copy.c_str(), RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(first, nullptr) << ::dlerror();
    using Set =
        int32_t (*)(int32_t, const char16_t*, const char16_t*, uint32_t, const void*, uint32_t);
    std::atomic<bool> done{false};
    std::thread other([&] { done.wait(false); });
    std::size_t settled = 0;
    for (int round = 0; round < 10; ++round) {
        void* const library = ::dlopen(QXCORE_LIBRARY, RTLD_NOW);
        const auto set = reinterpret_cast<Set>(::dlsym(library, "QXRegistrySetValue"));
        EXPECT_EQ(set(2, u"k", u"v", 3, "", 0), 0);
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

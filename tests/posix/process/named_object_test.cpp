// Objects that processes share by name: their life, other users, what is planted in their place.
#include <gtest/gtest.h>
#include <qxcore.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "posix/support/forked_child.h"
#include "support/failure.h"
#include "support/temporary_directory.h"
#include "support/unique_name.h"

namespace {

constexpr uint32_t kReadWrite = QX_FILE_READ | QX_FILE_WRITE;
constexpr QXResult kNew = 2;

std::string PlaceOf(const std::string& name, const char* kind = "SEM:") {
    return "/dev/shm/w64qxcore6." + (kind + name);
}

QXHandle OpenSemaphore(const std::string& name, uint32_t count) {
    QXHandle semaphore = nullptr;
    EXPECT_EQ(QX_S_OK, QXNamedSemOpen(name.c_str(), count, &semaphore));
    return semaphore;
}

QXResult OpenMemory(const std::string& name, uint32_t size, QXHandle* out) {
    return QXSharedMemOpen(name.c_str(), QX_FILE_CREATE, 0, size, out);
}

// The handle is closed again.
char* AttachMemory(const std::string& name, uint32_t size, QXResult expected) {
    QXHandle memory = nullptr;
    void* view = nullptr;
    EXPECT_EQ(expected, OpenMemory(name, size, &memory));
    EXPECT_EQ(QX_S_OK, QXSharedMemAttach(memory, kReadWrite, &view));
    QXSharedMemClose(memory);
    return static_cast<char*>(view);
}

bool LeavesNothingBehind(const std::string& name) {
    return !std::filesystem::exists(PlaceOf(name)) &&
           !std::filesystem::exists(PlaceOf(name, "SHM:"));
}

// A child that does `action`, says that it has, and stays.
ForkedChild StayingChild(const std::function<void()>& action) {
    SharedWithChildren<std::atomic<bool>> done;
    ForkedChild child([&] {
        action();
        *done = true;
        for (;;) {
            pause();
        }
        return 0;
    });
    while (!*done) {
        std::this_thread::yield();
    }
    return child;
}

bool IsTrueInChild(const std::function<bool()>& body) {
    return ForkedChild(body).Wait() == 1;
}

// A child that takes from the semaphore and is asleep over it.
ForkedChild SleepingChild(const std::string& name) {
    SharedWithChildren<std::atomic<pid_t>> id;
    ForkedChild child([&] {
        const QXHandle semaphore = OpenSemaphore(name, 0);
        *id = getpid();
        return QXNamedSemWait(semaphore) == QX_S_OK ? 0 : 1;
    });
    while (*id == 0 ||
           ReadFile("/proc/" + std::to_string(*id) + "/wchan").find("futex") == std::string::npos) {
        std::this_thread::yield();
    }
    return child;
}

TEST(NamedObject, IsFreshAfterAllHoldersWereKilledAndStaysWhileOneLives) {
    const std::string name = UniqueName();
    const auto hold = [&] {
        OpenSemaphore(name, 3);
        QXHandle memory;
        OpenMemory(name, 100000, &memory);
        void* view = nullptr;
        QXSharedMemAttach(memory, kReadWrite, &view);
        QXSharedMemClose(memory);
        static_cast<char*>(view)[99999] = 'x';
    };
    const auto look = [&](QXResult memoryResult, QXResult semaphoreResult) {
        const QXHandle semaphore = OpenSemaphore(name, 0);
        EXPECT_EQ(semaphoreResult, QXNamedSemTryWait(semaphore));
        QXNamedSemClose(semaphore);
        char* const view = AttachMemory(name, 5000, memoryResult);
        EXPECT_EQ(0, view[4999]);
        QXSharedMemDetach(view);
    };
    ForkedChild first = StayingChild(hold);
    ForkedChild second = StayingChild(hold);
    first.Kill();
    look(QX_S_OK, QX_S_OK);
    second.Kill();
    EXPECT_FALSE(LeavesNothingBehind(name));
    look(kNew, QX_E_FAIL);
    EXPECT_TRUE(LeavesNothingBehind(name));
}

TEST(NamedObject, IsKeptByAForkedChild) {
    const std::string name = UniqueName();
    const QXHandle semaphore = OpenSemaphore(name, 1);
    char* const view = AttachMemory(name, 10, kNew);
    ForkedChild child = StayingChild([] {});
    QXNamedSemClose(semaphore);
    QXSharedMemDetach(view);
    QXSharedMemDetach(AttachMemory(name, 10, QX_S_OK));
    const QXHandle again = OpenSemaphore(name, 0);
    EXPECT_EQ(QX_S_OK, QXNamedSemTryWait(again));
    child.Kill();
    QXSharedMemDetach(AttachMemory(name, 10, kNew));
    QXNamedSemClose(again);
    EXPECT_TRUE(LeavesNothingBehind(name));
}

TEST(NamedObject, IsNeverTwoWhileProcessesComeAndGo) {
    const std::string name = UniqueName();
    SharedWithChildren<std::atomic<int>> inside;
    std::vector<ForkedChild> children;
    for (int index = 0; index < 4; ++index) {
        children.emplace_back([&] {
            for (int round = 0; round < 3000; ++round) {
                const QXHandle lock = OpenSemaphore(name, 1);
                QXNamedSemWait(lock);
                const bool alone = inside->fetch_add(1) == 0;
                sched_yield();
                inside->fetch_sub(1);
                // A post that fails is a count too many.
                if (!alone || QXNamedSemPost(lock) != QX_S_OK) {
                    return 1;
                }
                QXNamedSemClose(lock);
                sched_yield();
            }
            return 0;
        });
    }
    for (ForkedChild& child : children) {
        EXPECT_EQ(0, child.Wait());
    }
    EXPECT_TRUE(LeavesNothingBehind(name));
}

TEST(NamedSemaphore, PostBelongsToWhoSleepsAndNotToWhoIsKilledInHisSleep) {
    const std::string name = UniqueName();
    const QXHandle semaphore = OpenSemaphore(name, 0);
    for (int round = 0; round < 10; ++round) {
        ForkedChild first = SleepingChild(name);
        ForkedChild second = SleepingChild(name);
        SleepingChild(name).Kill();
        for (int post = 0; post < 2; ++post) {
            EXPECT_EQ(QX_S_OK, QXNamedSemPost(semaphore));
            EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(semaphore));
        }
        EXPECT_EQ(0, first.Wait());
        EXPECT_EQ(0, second.Wait());
    }
    SleepingChild(name).Kill();
    QXNamedSemPost(semaphore);
    EXPECT_EQ(QX_S_OK, QXNamedSemTryWait(semaphore));
    EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(semaphore));
    QXNamedSemClose(semaphore);
}

TEST(NamedObject, AnyTextIsAName) {
    const std::string base = UniqueName();
    std::vector<QXHandle> semaphores;
    const std::string endings[] = {"",
                                   "/../../b",
                                   " a",
                                   "%2F",
                                   "A",
                                   "a",
                                   "\xC3\xA4",
                                   "\n",
                                   std::string(1000, 'x'),
                                   std::string(999, 'x') + "y"};
    for (const std::string& ending : endings) {
        semaphores.push_back(OpenSemaphore(base + ending, 1));
        EXPECT_EQ(QX_S_OK, QXNamedSemTryWait(semaphores.back())) << ending;
        semaphores.push_back(OpenSemaphore(base + ending, 1));
        EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(semaphores.back())) << ending;
    }
    for (const QXHandle semaphore : semaphores) {
        QXNamedSemClose(semaphore);
    }
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        EXPECT_EQ(std::string::npos, entry.path().string().find(base)) << entry.path();
    }
}

TEST(NamedObject, WhatIsPlantedInItsPlaceIsRefusedAndStaysAsItIs) {
    const std::string name = UniqueName();
    const std::string place = PlaceOf(name);
    const std::string other = "/dev/shm/" + name;
    std::ofstream(other) << "precious";
    const std::function<void()> plants[] = {
        [&] { std::filesystem::create_symlink(other, place); },
        [&] { std::filesystem::create_hard_link(other, place); },
        [&] { std::filesystem::create_directory(place); },
        [&] { mkfifo(place.c_str(), 0666); },
    };
    QXHandle semaphore = nullptr;
    for (const auto& plant : plants) {
        plant();
        {
            const ErrnoStays errnoStays;
            EXPECT_EQ(QX_E_HANDLE, QXNamedSemOpen(name.c_str(), 1, &semaphore));
        }
        EXPECT_EQ(QX_INVALID_HANDLE, semaphore);
        std::filesystem::remove(place);
    }
    EXPECT_EQ(8u, std::filesystem::file_size(other));
    std::filesystem::remove(other);
    const QXHandle inUse = OpenSemaphore(name, 1);
    for (const uintmax_t size : {0u, 4096u}) {
        std::filesystem::resize_file(place, size);
        EXPECT_EQ(QX_E_HANDLE, QXNamedSemOpen(name.c_str(), 1, &semaphore)) << size;
    }
    QXNamedSemClose(inUse);
    EXPECT_TRUE(LeavesNothingBehind(name));
}

bool Become(uid_t user) {
    return setresuid(user, user, user) == 0;
}

// Also where the system lets nobody make what is there already (fs.protected_regular).
TEST(NamedObject, UsersShareItWhateverTheirMasks) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to change the user";
    }
    constexpr char kSetting[] = "/proc/sys/fs/protected_regular";
    const std::string before = ReadFile(kSetting);
    for (const char* const protection : {"0\n", "2\n"}) {
        std::ofstream(kSetting) << protection;
        if (ReadFile(kSetting) != protection) {
            std::cout << kSetting << " cannot be " << protection;
            continue;
        }
        for (const uid_t maker : {65534, 0}) {
            const std::string name = UniqueName();
            ForkedChild holder = StayingChild([&] {
                umask(0077);
                EXPECT_TRUE(Become(maker));
                OpenSemaphore(name, 1);
            });
            for (const uid_t user : {65533, 0}) {
                EXPECT_TRUE(IsTrueInChild([&] {
                    const bool is = Become(user);
                    const QXHandle semaphore = OpenSemaphore(name, 0);
                    return is && QXNamedSemWait(semaphore) == QX_S_OK &&
                           QXNamedSemPost(semaphore) == QX_S_OK &&
                           QXNamedSemClose(semaphore) == QX_S_OK;
                })) << maker
                    << ' ' << user;
            }
            holder.Kill();
            // What the dead user has left is as new for another one, who cannot remove it.
            EXPECT_TRUE(IsTrueInChild([&] {
                return Become(65532) && QXNamedSemTryWait(OpenSemaphore(name, 0)) == QX_E_FAIL;
            })) << maker;
            std::filesystem::remove(PlaceOf(name));
        }
    }
    std::ofstream(kSetting) << before;
}

TEST(NamedObject, NoSpaceIsAFailureThatLeavesNothing) {
    const std::string name = UniqueName();
    QXHandle memory = nullptr;
    const auto isRefused = [&](uint32_t size) {
        return OpenMemory(name, size, &memory) == QX_E_FAIL && memory == QX_INVALID_HANDLE &&
               LeavesNothingBehind(name);
    };
    EXPECT_TRUE(IsTrueInChild([&] {
        const rlimit limit = {1 << 20, 1 << 20};
        return setrlimit(RLIMIT_FSIZE, &limit) == 0 && isRefused(2 << 20);
    }));
    EXPECT_TRUE(IsTrueInChild([&] {
        const rlimit limit = {3, 3};
        return setrlimit(RLIMIT_NOFILE, &limit) == 0 && isRefused(1);
    }));
    if (geteuid() != 0) {
        GTEST_SKIP() << "a small /dev/shm needs the right to mount one";
    }
    EXPECT_TRUE(IsTrueInChild([&] {
        QXHandle semaphore = nullptr;
        return MountForThisProcess("/dev/shm", "size=64k,mode=1777") && isRefused(1 << 20) &&
               OpenMemory(name, 60 << 10, &memory) == kNew &&
               OpenMemory(name + "'", 4096, &memory) == kNew &&
               QXNamedSemOpen(name.c_str(), 1, &semaphore) == QX_E_FAIL &&
               !std::filesystem::exists(PlaceOf(name));
    }));
    EXPECT_TRUE(IsTrueInChild([&] {
        return MountForThisProcess("/dev", nullptr) &&
               OpenMemory(name, 1, &memory) == QX_E_NOTFOUND;
    }));
}

}  // namespace

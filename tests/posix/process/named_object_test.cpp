// Objects that processes share by name: their life, other users, what is planted in their place.
#include <fcntl.h>
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
#include "support/unique_name.h"

namespace {

constexpr uint32_t kReadWrite = QX_FILE_READ | QX_FILE_WRITE;
constexpr QXResult kNew = 2;
constexpr char kPlace[] = "/dev/shm/w64qxcore6.";

QXHandle OpenSemaphore(const std::string& name, uint32_t count) {
    QXHandle semaphore = nullptr;
    EXPECT_EQ(QX_S_OK, QXNamedSemOpen(name.c_str(), count, &semaphore));
    return semaphore;
}

QXResult OpenMemory(const std::string& name, uint32_t size, QXHandle* out) {
    return QXSharedMemOpen(name.c_str(), QX_FILE_CREATE, 0, size, out);
}

bool LeavesNothingBehind(const std::string& name) {
    return !std::filesystem::exists(kPlace + ("SEM:" + name)) &&
           !std::filesystem::exists(kPlace + ("SHM:" + name));
}

// A child that does `action`, says that it has, and stays.
class StayingChild {
  public:
    template <typename Action>
    explicit StayingChild(Action action)
        : m_process([&] {
              action();
              *m_done = true;
              for (;;) {
                  pause();
              }
              return 0;
          }) {
        while (!*m_done) {
            std::this_thread::yield();
        }
    }
    void Kill() { m_process.Kill(); }

  private:
    SharedWithChildren<std::atomic<bool>> m_done;
    ForkedChild m_process;
};

// Runs the body in a child; its result is the child's.
int InChild(const std::function<bool()>& body) {
    return ForkedChild([&] { return body() ? 0 : 1; }).Wait();
}

bool IsAsleep(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/wchan");
    std::string where;
    file >> where;
    return where.starts_with("futex") || where.starts_with("__futex");
}

// A child that takes from the semaphore and is asleep over it.
ForkedChild SleepingChild(const std::string& name) {
    SharedWithChildren<std::atomic<pid_t>> id;
    ForkedChild child([&] {
        const QXHandle semaphore = OpenSemaphore(name, 0);
        *id = getpid();
        return QXNamedSemWait(semaphore) == QX_S_OK ? 0 : 1;
    });
    while (*id == 0 || !IsAsleep(*id)) {
        std::this_thread::yield();
    }
    return child;
}

TEST(NamedObject, IsFreshAfterAllHoldersWereKilledAndStaysWhileOneLives) {
    const std::string name = UniqueName();
    const auto hold = [&] {
        QXHandle memory;
        void* view = nullptr;
        OpenSemaphore(name, 3);
        OpenMemory(name, 100000, &memory);
        QXSharedMemAttach(memory, kReadWrite, &view);
        QXSharedMemClose(memory);
        static_cast<char*>(view)[99999] = 'x';
    };
    const auto look = [&](QXResult memoryResult, QXResult semaphoreResult) {
        const QXHandle semaphore = OpenSemaphore(name, 0);
        EXPECT_EQ(semaphoreResult, QXNamedSemTryWait(semaphore));
        QXNamedSemClose(semaphore);
        QXHandle memory;
        EXPECT_EQ(memoryResult, OpenMemory(name, 5000, &memory));
        void* view = nullptr;
        EXPECT_EQ(QX_S_OK, QXSharedMemAttach(memory, kReadWrite, &view));
        EXPECT_EQ(0, static_cast<char*>(view)[4999]);
        QXSharedMemDetach(view);
        QXSharedMemClose(memory);
    };
    StayingChild first(hold);
    StayingChild second(hold);
    first.Kill();
    look(QX_S_OK, QX_S_OK);
    second.Kill();
    EXPECT_FALSE(LeavesNothingBehind(name));
    look(kNew, QX_E_FAIL);
    EXPECT_TRUE(LeavesNothingBehind(name));
}

TEST(NamedObject, IsKeptByAForkedChild) {
    const std::string name = UniqueName();
    QXHandle memory;
    ASSERT_EQ(kNew, OpenMemory(name, 10, &memory));
    const QXHandle semaphore = OpenSemaphore(name, 1);
    StayingChild child([&] {
        void* view = nullptr;
        QXSharedMemAttach(memory, kReadWrite, &view);
        QXSharedMemClose(memory);
    });
    QXNamedSemClose(semaphore);
    QXSharedMemClose(memory);
    EXPECT_EQ(QX_S_OK, OpenMemory(name, 10, &memory));
    const QXHandle again = OpenSemaphore(name, 0);
    EXPECT_EQ(QX_S_OK, QXNamedSemTryWait(again));
    child.Kill();
    QXSharedMemClose(memory);
    QXNamedSemClose(again);
    EXPECT_TRUE(LeavesNothingBehind(name));
}

TEST(NamedObject, IsNeverTwoWhileProcessesComeAndGo) {
    constexpr int kProcesses = 4;
    constexpr int kRounds = 3000;
    const std::string name = UniqueName();
    SharedWithChildren<std::atomic<int>> inside;
    std::vector<ForkedChild> children;
    for (int index = 0; index < kProcesses; ++index) {
        children.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
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

bool HasOpen(pid_t process, const std::string& path) {
    std::error_code ignored;
    for (const auto& entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd", ignored)) {
        if (std::filesystem::read_symlink(entry, ignored) == path) {
            return true;
        }
    }
    return false;
}

TEST(NamedObject, WhoWaitsForTheGuardOfARemovedFileGoesOnToTheNewOne) {
    const std::string name = UniqueName();
    const std::string place = kPlace + ("SEM:" + name);
    const int removed = open(place.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    struct flock guard = {
        .l_type = F_WRLCK, .l_whence = SEEK_SET, .l_start = 0, .l_len = 1, .l_pid = 0};
    ASSERT_EQ(0, fcntl(removed, F_OFD_SETLK, &guard));
    SharedWithChildren<std::atomic<pid_t>> id;
    ForkedChild child([&] {
        close(removed);
        *id = getpid();
        return QXNamedSemTryWait(OpenSemaphore(name, 1)) == QX_E_FAIL ? 0 : 1;
    });
    while (*id == 0 || !HasOpen(*id, place)) {
        std::this_thread::yield();
    }
    std::filesystem::remove(place);
    const QXHandle semaphore = OpenSemaphore(name, 0);
    close(removed);
    EXPECT_EQ(0, child.Wait());
    QXNamedSemClose(semaphore);
    EXPECT_TRUE(LeavesNothingBehind(name));
}

TEST(NamedSemaphore, PostBelongsToWhoSleeps) {
    const std::string name = UniqueName();
    const QXHandle semaphore = OpenSemaphore(name, 0);
    for (int round = 0; round < 20; ++round) {
        ForkedChild first = SleepingChild(name);
        ForkedChild second = SleepingChild(name);
        EXPECT_EQ(QX_S_OK, QXNamedSemPost(semaphore));
        EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(semaphore));
        EXPECT_EQ(QX_S_OK, QXNamedSemPost(semaphore));
        EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(semaphore));
        EXPECT_EQ(0, first.Wait());
        EXPECT_EQ(0, second.Wait());
    }
    QXNamedSemClose(semaphore);
}

TEST(NamedSemaphore, WhoIsKilledInHisSleepTakesNothing) {
    const std::string name = UniqueName();
    const QXHandle semaphore = OpenSemaphore(name, 0);
    ForkedChild survivor = SleepingChild(name);
    SleepingChild(name).Kill();
    QXNamedSemPost(semaphore);
    EXPECT_EQ(0, survivor.Wait());
    SleepingChild(name).Kill();
    QXNamedSemPost(semaphore);
    EXPECT_EQ(QX_S_OK, QXNamedSemTryWait(semaphore));
    EXPECT_EQ(QX_E_FAIL, QXNamedSemTryWait(semaphore));
    QXNamedSemClose(semaphore);
}

TEST(NamedObject, AnyTextIsAName) {
    const std::string base = UniqueName();
    std::vector<QXHandle> semaphores = {OpenSemaphore("", 1)};
    const std::string endings[] = {"",
                                   "/a",
                                   "/../../b",
                                   " a",
                                   "%2F",
                                   "A",
                                   std::string(1000, 'x'),
                                   "\xC3\xA4",
                                   "a",
                                   "\n\\*",
                                   std::string(999, 'x') + "y"};
    for (const std::string& ending : endings) {
        semaphores.push_back(
            OpenSemaphore(base + ending, static_cast<uint32_t>(semaphores.size())));
    }
    uint32_t count = 0;
    for (const std::string& ending : endings) {
        const QXHandle again = OpenSemaphore(base + ending, 100);
        ++count;
        for (uint32_t taken = 0; taken <= count; ++taken) {
            EXPECT_EQ(taken < count ? QX_S_OK : QX_E_FAIL, QXNamedSemTryWait(again)) << ending;
        }
        QXNamedSemClose(again);
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
    const std::string place = kPlace + ("SEM:" + name);
    const std::string other = "/dev/shm/" + name;
    std::ofstream(other) << "precious";
    const std::function<void()> plants[] = {
        [&] { std::filesystem::create_symlink(other, place); },
        [&] { std::filesystem::create_hard_link(other, place); },
        [&] { std::filesystem::create_directory(place); },
        [&] { mkfifo(place.c_str(), 0666); },
    };
    for (const auto& plant : plants) {
        plant();
        QXHandle semaphore = nullptr;
        {
            const ErrnoStays errnoStays;
            EXPECT_EQ(QX_E_HANDLE, QXNamedSemOpen(name.c_str(), 1, &semaphore));
        }
        EXPECT_EQ(QX_INVALID_HANDLE, semaphore);
        std::filesystem::remove(place);
    }
    EXPECT_EQ(8u, std::filesystem::file_size(other));
    std::filesystem::remove(other);
}

TEST(NamedObject, AFileOfAnotherSizeInUseIsNoSemaphore) {
    const std::string name = UniqueName();
    const QXHandle semaphore = OpenSemaphore(name, 1);
    for (const uintmax_t size : {0u, 4u, 4096u}) {
        std::filesystem::resize_file(kPlace + ("SEM:" + name), size);
        QXHandle refused = nullptr;
        EXPECT_EQ(QX_E_HANDLE, QXNamedSemOpen(name.c_str(), 1, &refused)) << size;
    }
    QXNamedSemClose(semaphore);
    EXPECT_TRUE(LeavesNothingBehind(name));
}

// The value of fs.protected_regular for the length of a test; changes nothing where that is not
// allowed.
class ProtectedRegular {
  public:
    explicit ProtectedRegular(char value) {
        std::ifstream(kFile) >> m_before;
        Set(value);
    }
    ~ProtectedRegular() { Set(m_before); }
    bool Is(char value) {
        char now = 0;
        std::ifstream(kFile) >> now;
        return now == value;
    }

  private:
    static constexpr char kFile[] = "/proc/sys/fs/protected_regular";
    static void Set(char value) { std::ofstream(kFile) << value; }
    char m_before = '0';
};

TEST(NamedObject, UsersShareItWhateverTheirMasks) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs the right to change the user";
    }
    constexpr uid_t kUsers[] = {65534, 65533, 0};
    for (const char protection : {'0', '2'}) {
        ProtectedRegular setting(protection);
        if (!setting.Is(protection)) {
            std::cout << "fs.protected_regular cannot be " << protection << " here\n";
            continue;
        }
        for (const uid_t maker : kUsers) {
            const std::string name = UniqueName();
            StayingChild holder([&] {
                umask(0077);
                EXPECT_EQ(0, setresuid(maker, maker, maker));
                OpenSemaphore(name, 1);
            });
            for (const uid_t user : kUsers) {
                EXPECT_EQ(0, InChild([&] {
                              const bool is = setresuid(user, user, user) == 0;
                              const QXHandle semaphore = OpenSemaphore(name, 0);
                              return is && QXNamedSemWait(semaphore) == QX_S_OK &&
                                     QXNamedSemPost(semaphore) == QX_S_OK &&
                                     QXNamedSemClose(semaphore) == QX_S_OK;
                          }))
                    << maker << " " << user;
            }
            holder.Kill();
            // What the dead user has left is as new for another one, who cannot remove it.
            EXPECT_EQ(0, InChild([&] {
                          const bool is = setresuid(65532, 65532, 65532) == 0;
                          const QXHandle semaphore = OpenSemaphore(name, 0);
                          return is && QXNamedSemTryWait(semaphore) == QX_E_FAIL &&
                                 QXNamedSemClose(semaphore) == QX_S_OK;
                      }))
                << maker;
            std::filesystem::remove(kPlace + ("SEM:" + name));
        }
    }
}

TEST(NamedObject, NoSpaceIsAFailureThatLeavesNothing) {
    const std::string name = UniqueName();
    const auto isRefused = [&](uint32_t size) {
        QXHandle memory = nullptr;
        return OpenMemory(name, size, &memory) == QX_E_FAIL && memory == QX_INVALID_HANDLE &&
               LeavesNothingBehind(name);
    };
    EXPECT_EQ(0, InChild([&] {
                  const rlimit limit = {1 << 20, 1 << 20};
                  setrlimit(RLIMIT_FSIZE, &limit);
                  return isRefused(2 << 20);
              }));
    EXPECT_EQ(0, InChild([&] {
                  const rlimit limit = {3, 3};
                  setrlimit(RLIMIT_NOFILE, &limit);
                  return isRefused(1);
              }));
    if (geteuid() != 0) {
        GTEST_SKIP() << "a small /dev/shm needs the right to mount one";
    }
    EXPECT_EQ(0, InChild([&] {
                  QXHandle memory = nullptr;
                  if (!MountForThisProcess("/dev/shm", "size=64k,mode=1777") ||
                      !isRefused(1 << 20) || OpenMemory(name, 60 << 10, &memory) != kNew) {
                      return false;
                  }
                  QXHandle semaphore = nullptr;
                  OpenMemory(name + "'", 4096, &memory);
                  return QXNamedSemOpen(name.c_str(), 1, &semaphore) == QX_E_FAIL &&
                         !std::filesystem::exists(kPlace + ("SEM:" + name));
              }));
    EXPECT_EQ(0, InChild([&] {
                  QXHandle memory = nullptr;
                  return MountForThisProcess("/dev", nullptr) &&
                         OpenMemory(name, 1, &memory) == QX_E_NOTFOUND;
              }));
}

TEST(NamedObject, TakesNoneOfTheStandardDescriptors) {
    EXPECT_EQ(0, InChild([&] {
                  close(0);
                  QXHandle memory = nullptr;
                  return OpenMemory(UniqueName(), 1, &memory) == kNew && fcntl(0, F_GETFD) == -1 &&
                         QXSharedMemClose(memory) == QX_S_OK;
              }));
}

}  // namespace

// What processes remember of a store, and the word that tells them whether it is current.
#include <fcntl.h>
#include <sched.h>
#include <sys/stat.h>

#include <atomic>
#include <functional>
#include <map>
#include <random>
#include <thread>

#include "config/registry_support.h"
#include "posix/support/comes_true.h"
#include "posix/support/forked_child.h"

namespace {

namespace fs = std::filesystem;
using RegistryWord = Registry;

constexpr uid_t kNobody = 65534;

bool SetNumber(uint32_t number, int32_t root = QX_HKEY_USER) {
    return QXRegistrySetValue(root, u"k", u"number", QX_REG_DWORD, &number, sizeof number) == 0;
}

// 0 if there is none.
uint32_t Number(int32_t root = QX_HKEY_USER) {
    uint32_t number = 0;
    uint32_t size = sizeof number;
    const QXResult result = QXRegistryGetValue(root, u"k", u"number", nullptr, &number, &size);
    return result == 0 || result == QX_E_NOTFOUND ? number : ~0u;
}

struct Progress {
    std::atomic<uint32_t> m_acknowledged{0};
    std::atomic<bool> m_done{false};
    std::atomic<uint32_t> m_reads{0};
};

// Reads for as long as others write. No value may be older than what was acknowledged before.
int WatchAcknowledged(Progress& progress) {
    while (!progress.m_done) {
        const uint32_t due = progress.m_acknowledged;
        const uint32_t found = Number();
        if (found < due || found == ~0u) {
            return 1;
        }
        ++progress.m_reads;
    }
    return 0;
}

#if defined(__SANITIZE_THREAD__)
constexpr uint32_t kWriters = 100;  // each takes long to start
#else
constexpr uint32_t kWriters = 1000;
#endif

TEST_F(RegistryWord, ReadersSeeEachAcknowledgedWriteOfWritersWhoAreKilledAtAnyPoint) {
    ASSERT_EQ(ForkedChild([] { return SetNumber(1) ? 0 : 1; }).Wait(), 0);
    SharedWithChildren<Progress> progress;
    ForkedChild reader([&] { return WatchAcknowledged(*progress); });
    std::mt19937 random(4711);  // NOLINT(*-msc51-cpp): the same each time
    for (uint32_t round = 0; round < kWriters; ++round) {
        ForkedChild writer([&] {
            for (uint32_t next = Number() + 1; SetNumber(next); ++next) {
                progress->m_acknowledged = next;
            }
            return 1;
        });
        const uint32_t due = progress->m_acknowledged + (round % 4 == 0);
        for (uint32_t left = random() % 100; progress->m_acknowledged < due || left-- != 0;) {
            ::sched_yield();
        }
        writer.Kill();
    }
    progress->m_done = true;
    EXPECT_EQ(reader.Wait(), 0);
    EXPECT_GE(Number(), progress->m_acknowledged);
    EXPECT_GE(progress->m_acknowledged, kWriters / 4);
}

// A process that writes what it is told through a pipe, and answers when it has.
class OtherWriter {
  public:
    OtherWriter()
        : m_isReady(::pipe2(m_orders, O_CLOEXEC) == 0 && ::pipe2(m_answers, O_CLOEXEC) == 0),
          m_process([this] {
              uint32_t number = 0;
              while (::read(m_orders[0], &number, sizeof number) == sizeof number) {
                  const bool set = SetNumber(number);
                  if (::write(m_answers[1], &set, sizeof set) != sizeof set) {
                      return 1;
                  }
              }
              return 0;
          }) {
        ::close(m_orders[0]);
        ::close(m_answers[1]);
    }
    ~OtherWriter() {
        ::close(m_orders[1]);
        ::close(m_answers[0]);
    }
    bool Set(uint32_t number) {
        bool set = false;
        return m_isReady && ::write(m_orders[1], &number, sizeof number) == sizeof number &&
               ::read(m_answers[0], &set, sizeof set) == sizeof set && set;
    }

  private:
    int m_orders[2];
    int m_answers[2];
    bool m_isReady;
    ForkedChild m_process;
};

TEST_F(RegistryWord, ADamagedFileNeitherEndsAProcessNorLetsItMissAWriteForLong) {
    const fs::path word = File("user.db-word");
    const auto replaceBy = [&](const std::function<void()>& make) { fs::remove(word), make(); };
    const struct {
        const char* what;
        std::function<void()> damage;
        bool isSeenAtOnce;  // a file that others have mapped and that is at its place no longer
    } rows[] = {
        {"emptied", [&] { fs::resize_file(word, 0); }, true},
        {"emptied and filled with zeros",
         [&] { fs::resize_file(word, 0), fs::resize_file(word, 4096); }, true},
        {"cut", [&] { fs::resize_file(word, 100); }, true},
        {"too long", [&] { fs::resize_file(word, 8192); }, true},
        {"for more users", [&] { ::chmod(word.c_str(), 0666); }, true},
        {"removed", [&] { fs::remove(word); }, false},
        {"replaced by a copy",
         [&] { fs::copy_file(word, File("copy")), fs::rename(File("copy"), word); }, false},
        {"a directory", [&] { replaceBy([&] { fs::create_directories(word / "below"); }); }, false},
        {"a pipe", [&] { replaceBy([&] { ::mkfifo(word.c_str(), 0600); }); }, false},
        {"a link", [&] { replaceBy([&] { fs::create_symlink(File("user.db"), word); }); }, false},
    };
    ASSERT_TRUE(SetNumber(1));
    OtherWriter other;
    uint32_t number = 1;
    for (const auto& row : rows) {
        ASSERT_TRUE(other.Set(++number)) << row.what;
        ASSERT_EQ(Number(), number) << row.what;
        row.damage();
        EXPECT_EQ(Number(), number) << row.what;
        EXPECT_TRUE(other.Set(++number)) << row.what;
        if (row.isSeenAtOnce) {
            EXPECT_EQ(Number(), number) << row.what;
        } else {
            EXPECT_TRUE(ComesTrue([&] { return Number() == number; })) << row.what;
        }
        // From here on both know, whatever the file is.
        for (int round = 0; round < 3; ++round) {
            EXPECT_TRUE(SetNumber(++number)) << row.what;
            EXPECT_TRUE(other.Set(++number)) << row.what;
            EXPECT_EQ(Number(), number) << row.what;
        }
        if (!fs::is_regular_file(fs::symlink_status(word))) {
            fs::remove_all(word);
        }
    }
    EXPECT_EQ(fs::file_size(word), 4096u);
}

ino_t InodeOf(const fs::path& file) {
    struct stat status;
    return ::stat(file.c_str(), &status) == 0 ? status.st_ino : 0;
}

TEST_F(RegistryWord, AFileOfAnotherStoreServesNobody) {
    ASSERT_TRUE(SetNumber(7));
    ASSERT_TRUE(SetNumber(7, QX_HKEY_CONFIG));
    fs::copy_file(File("machine.db-word"), File("copy"));
    ::chmod(File("copy").c_str(), 0600);
    const ino_t ofAnother = InodeOf(File("copy"));
    fs::rename(File("copy"), File("user.db-word"));
    OtherWriter other;  // it has no other word than this
    ASSERT_TRUE(other.Set(8));
    EXPECT_TRUE(ComesTrue([] { return Number() == 8; }));
    ASSERT_TRUE(SetNumber(9));
    ASSERT_TRUE(other.Set(10));
    EXPECT_EQ(Number(), 10u);
    EXPECT_NE(InodeOf(File("user.db-word")), ofAnother) << "it was replaced";
}

TEST_F(RegistryWord, AReaderWhoMayNotWriteSeesEachWriteAtOnce) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    ::chmod(m_registry.Folder().c_str(), 0755);
    ASSERT_EQ(ForkedChild([] { return SetNumber(1, QX_HKEY_CONFIG) ? 0 : 1; }).Wait(), 0);
    SharedWithChildren<Progress> progress;
    ForkedChild reader([&] {
        if (::setuid(kNobody) != 0) {
            return 1;
        }
        while (!progress->m_done) {
            const uint32_t due = progress->m_acknowledged;
            if (Number(QX_HKEY_CONFIG) < due) {
                return 2;
            }
            ++progress->m_reads;
        }
        return 0;
    });
    for (uint32_t number = 2; number < 500; ++number) {
        const uint32_t reads = progress->m_reads;
        ASSERT_TRUE(SetNumber(number, QX_HKEY_CONFIG));
        progress->m_acknowledged = number;
        ASSERT_TRUE(ComesTrue([&] { return progress->m_reads > reads; }));
    }
    progress->m_done = true;
    EXPECT_EQ(reader.Wait(), 0);
    struct stat status;
    ASSERT_EQ(::stat(File("machine.db-word").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0644u);
}

TEST_F(RegistryWord, EachSideOfAForkHasItsOwnMemory) {
    ASSERT_TRUE(SetNumber(1));
    ASSERT_EQ(Number(), 1u);
    ForkedChild child([] {
        const bool inherits = Number() == 1;
        return inherits && SetNumber(2) && Number() == 2 ? 0 : 1;
    });
    EXPECT_EQ(child.Wait(), 0);
    EXPECT_EQ(Number(), 2u);
}

// A value that was read by its name and in a list is remembered twice.
TEST_F(RegistryWord, AWriteChangesAllThatIsRememberedOfAValue) {
    ASSERT_EQ(SetText(u"k", u"v", u"old"), 0);
    ASSERT_EQ(ForkedChild([] { return SetText(u"other", u"v", u"text") == 0 ? 0 : 1; }).Wait(), 0);
    const auto listed = [] {
        QXHandle values;
        char16_t name[10];
        char16_t text[10] = {};
        uint32_t length = 10;
        uint32_t type = 0;
        uint32_t size = sizeof text;
        EXPECT_EQ(QXRegistryOpenValueEnum(QX_HKEY_USER, u"k", &values), 0);
        EXPECT_EQ(QXRegistryEnumNextValue(values, name, &length, &type, text, &size), 0);
        QXRegistryCloseEnum(values);
        return std::u16string(text);
    };
    EXPECT_EQ(Text(u"k", u"v"), u"old");
    EXPECT_EQ(listed(), u"old");
    for (char16_t unit = u'a'; unit < 0x1000; ++unit) {  // the table grows
        Text(u"other", std::u16string(2, unit).c_str());
        if (unit % 100 == 0) {
            const std::u16string now(3, unit);
            ASSERT_EQ(SetText(u"k", u"v", now), 0);
            ASSERT_EQ(Text(u"k", u"v"), now);
            ASSERT_EQ(listed(), now);
        }
    }
}

// One process's own keys, changed and read at random beside others who do the same.
class RandomSequence {
  public:
    explicit RandomSequence(int process)
        : m_random(static_cast<unsigned>(process)),
          m_path(u"p\\" + std::u16string(1, static_cast<char16_t>(u'a' + process))) {}

    bool Run(int steps) {
        for (int step = 0; step < steps; ++step) {
            if (!Step()) {
                return false;
            }
        }
        return true;
    }

  private:
    static constexpr int kNames = 12;

    std::u16string Name(unsigned which) const {
        return {static_cast<char16_t>(u'A' + which % kNames), u'v'};
    }

    bool Step() {
        const std::u16string name = Name(static_cast<unsigned>(m_random()));
        switch (m_random() % 8) {
            case 0:
            case 1:
                return Set(name);
            case 2:
                return Delete(name);
            case 3:
                return m_random() % 20 != 0 || DeleteKey();
            case 4:
                return ListIsRight();
            default:
                return IsRight(name);
        }
    }

    bool Set(const std::u16string& name) {
        const auto value = static_cast<uint32_t>(m_random());
        if (!m_values.contains(name)) {
            m_order.push_back(name);
        }
        m_values[name] = value;
        return QXRegistrySetValue(QX_HKEY_USER, m_path.c_str(), name.c_str(), QX_REG_DWORD, &value,
                                  sizeof value) == 0;
    }

    bool Delete(const std::u16string& name) {
        const bool was = m_values.erase(name) != 0;
        std::erase(m_order, name);
        return (QXRegistryDeleteValue(QX_HKEY_USER, m_path.c_str(), name.c_str()) == 0) == was;
    }

    bool DeleteKey() {
        m_values.clear();
        m_order.clear();
        QXRegistryDeleteKey(QX_HKEY_USER, m_path.c_str());
        return SubkeysBelow() == 0;
    }

    std::size_t SubkeysBelow() const {
        const auto all = SubkeysOf(u"p");
        return static_cast<std::size_t>(std::count(all.begin(), all.end(), m_path.substr(2)));
    }

    bool IsRight(const std::u16string& name) const {
        uint32_t value = 0;
        uint32_t size = sizeof value;
        const QXResult result =
            QXRegistryGetValue(QX_HKEY_USER, m_path.c_str(), name.c_str(), nullptr, &value, &size);
        const auto known = m_values.find(name);
        return known == m_values.end() ? result == QX_E_NOTFOUND
                                       : result == 0 && value == known->second;
    }

    bool ListIsRight() const {
        QXHandle values;
        std::vector<std::u16string> found;
        if (QXRegistryOpenValueEnum(QX_HKEY_USER, m_path.c_str(), &values) == 0) {
            char16_t name[8];
            uint32_t length = 8;
            uint32_t type;
            uint32_t size = 0;
            while (QXRegistryEnumNextValue(values, name, &length, &type, nullptr, &size) == 0) {
                found.emplace_back(name, length);
                length = 8;
            }
            QXRegistryCloseEnum(values);
        }
        return found == m_order;
    }

    std::mt19937 m_random;
    std::u16string m_path;
    std::map<std::u16string, uint32_t> m_values;
    std::vector<std::u16string> m_order;
};

TEST_F(RegistryWord, FourProcessesOfTwoThreadsFindWhatTheyWrote) {
    std::vector<ForkedChild> processes;
    processes.reserve(4);
    for (int i = 0; i < 4; ++i) {
        processes.emplace_back([i] {
            bool other = false;
            std::thread thread([&] { other = RandomSequence(2 * i + 1).Run(2000); });
            const bool own = RandomSequence(2 * i).Run(2000);
            thread.join();
            return own && other ? 0 : 1;
        });
    }
    for (ForkedChild& process : processes) {
        EXPECT_EQ(process.Wait(), 0);
    }
}

// More than fits: what is remembered makes room, and everything is found all the same.
TEST_F(RegistryWord, AStoreThatIsLargerThanTheMemoryIsReadRight) {
    const std::u16string text(20'000, u'x');
    constexpr int kValues = 300;  // twelve million bytes
    const auto nameOf = [](int i) { return std::u16string(1, static_cast<char16_t>(0x1000 + i)); };
    for (int i = 0; i < kValues; ++i) {
        ASSERT_EQ(SetText(u"k", nameOf(i).c_str(), nameOf(i) + text), 0);
    }
    std::vector<char16_t> data(20'010);
    for (int i = 0; i < 5 * kValues; ++i) {
        const std::u16string name = nameOf(i * 7 % kValues);
        uint32_t size = static_cast<uint32_t>(2 * data.size());
        ASSERT_EQ(QXRegistryGetValue(QX_HKEY_USER, u"k", name.c_str(), nullptr, data.data(), &size),
                  0);
        ASSERT_EQ(data[0], name[0]);
        ASSERT_EQ(size, 2 * (text.size() + 2));
    }
}

}  // namespace

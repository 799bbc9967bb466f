#include <gtest/gtest.h>
#include <qxcore/host.h>
#include <qxcore/string.h>

#include <string>
#include <thread>
#include <vector>

#include "support/exact_text.h"

namespace {

template <typename Unit>
void ExpectFit(QXResult getName(Unit*, uint32_t), const std::basic_string<Unit>& name) {
    const auto length = static_cast<uint32_t>(name.size());
    std::vector<Unit> exact(length + 1, '?');
    EXPECT_EQ(getName(exact.data(), length), QX_E_FAIL);
    EXPECT_EQ(exact, std::vector<Unit>(length + 1, '?'));
    EXPECT_EQ(getName(exact.data(), length + 1), QX_S_OK);
    EXPECT_EQ(exact.data(), name);
}

TEST(Host, NameFitsABufferOfItsLengthAndOne) {
    char name[1026];
    ASSERT_EQ(QXGetHostNameA(name, sizeof name), QX_S_OK);
    EXPECT_NE(*name, '\0');
    ExpectFit<char>(QXGetHostNameA, name);
    ExpectFit<wchar>(QXGetHostName, Widen(name));
}

TEST(Host, AddressListsAreBuiltOnceForAllThreads) {
    addrinfo* lists[4][2] = {};
    std::vector<std::thread> threads;
    for (auto& each : lists) {
        threads.emplace_back([&each] { QXGetMyAddressInformation(&each[0], &each[1]); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const auto& each : lists) {
        EXPECT_EQ(each[0], lists[0][0]);
        EXPECT_EQ(each[1], lists[0][1]);
    }
    ASSERT_NE(lists[0][1], nullptr);
    EXPECT_EQ(QXCompareAddressInformation(lists[0][1], lists[0][1]), 1);
}

TEST(Host, ListsShareAnAddressOfOneFamily) {
    const auto share = [](const char* first, const char* second) {
        addrinfo* lists[2] = {};
        EXPECT_EQ(QXgetaddrinfo(first, nullptr, nullptr, &lists[0]), 0) << first;
        EXPECT_EQ(QXgetaddrinfo(second, "80", nullptr, &lists[1]), 0) << second;
        const int16_t shared = QXCompareAddressInformation(lists[0], lists[1]);
        EXPECT_EQ(QXCompareAddressInformation(lists[0], nullptr), 0);
        EXPECT_EQ(QXCompareAddressInformation(nullptr, lists[1]), 0);
        QXfreeaddrinfo(lists[0]);
        QXfreeaddrinfo(lists[1]);
        return shared;
    };
    EXPECT_EQ(share("10.1.2.3", "10.1.2.3"), 1);
    EXPECT_EQ(share("10.1.2.3", "10.1.2.4"), 0);
    EXPECT_EQ(share("2001:DB8::7", "2001:db8:0::7"), 1);
    EXPECT_EQ(share("2001:db8::7", "2001:db8::8"), 0);
    EXPECT_EQ(share("::ffff:10.1.2.3", "10.1.2.3"), 0);
    EXPECT_EQ(share("2001-DB8--7.IPV6-literal.NET", "2001:db8::7"), 1);
}

TEST(Host, KnowsItself) {
    char name[1026];
    ASSERT_EQ(QXGetHostNameA(name, sizeof name), QX_S_OK);
    QXStrToUpperA(name);
    for (const char* mine :
         std::initializer_list<const char*>{"LOCALHOST", "127.0.0.1", "::1", "", name}) {
        EXPECT_EQ(QXIsThisMyComputerA(mine), 1) << mine;
        EXPECT_EQ(QXIsThisMyComputerW(Widen(mine).c_str()), 1);
    }
    EXPECT_EQ(QXIsThisMyComputerA("192.0.2.77"), 0);
    EXPECT_EQ(QXIsThisMyComputerW(std::u16string(1026, u'a').c_str()), 0);
}

}  // namespace

// A network of the test's own, with a loopback interface that has a link-local address.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>
#include <qxcore/host.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

bool MakeNetwork() {
    if (unshare(CLONE_NEWNET) != 0) {
        return false;
    }
    const int socket = ::socket(AF_INET6, SOCK_DGRAM, 0);
    ifreq up = {};
    std::strcpy(up.ifr_name, "lo");
    up.ifr_flags = IFF_UP;
    bool made = ioctl(socket, SIOCSIFFLAGS, &up) == 0;
    for (const char* const text : {"fe80::1", "fe80::2"}) {
        struct {
            in6_addr address;
            uint32_t prefixLength = 64;
            int interface = 1;
        } request;
        inet_pton(AF_INET6, text, &request.address);
        made = made && ioctl(socket, SIOCSIFADDR, &request) == 0;
    }
    close(socket);
    return made;
}

std::vector<std::string> Texts(const addrinfo* list) {
    std::vector<std::string> texts;
    for (; list != nullptr; list = list->ai_next) {
        char text[NI_MAXHOST];
        getnameinfo(list->ai_addr, list->ai_addrlen, text, sizeof text, nullptr, 0, NI_NUMERICHOST);
        texts.emplace_back(text);
    }
    return texts;
}

TEST(Interfaces, LinkLocalLoopbackHeadsTheListOfLocalhost) {
    if (!MakeNetwork()) {
        GTEST_SKIP() << "needs the right to make a network";
    }
    addrinfo* interfaces = nullptr;
    addrinfo* localhost = nullptr;
    ASSERT_EQ(QXGetMyAddressInformation(&interfaces, &localhost), QX_S_OK);
    EXPECT_EQ(Texts(interfaces), (std::vector<std::string>{"127.0.0.1", "fe80::2%lo"}));
    ASSERT_NE(localhost, nullptr);
    EXPECT_EQ(Texts(localhost)[0], "fe80::1%lo");
    EXPECT_EQ(localhost->ai_socktype, SOCK_STREAM);
    EXPECT_EQ(localhost->ai_addrlen, sizeof(sockaddr_in6));
    ASSERT_NE(localhost->ai_next, nullptr);
    EXPECT_EQ(localhost->ai_canonname, localhost->ai_next->ai_canonname);
    EXPECT_STREQ(interfaces->ai_canonname, localhost->ai_canonname);
    EXPECT_EQ(interfaces->ai_next->ai_canonname, nullptr);
    EXPECT_EQ(QXIsThisMyComputerA("fe80--2s1.ipv6-literal.net"), 1);
    EXPECT_EQ(QXIsThisMyComputerA("fe80::3%1"), 0);
}

}  // namespace

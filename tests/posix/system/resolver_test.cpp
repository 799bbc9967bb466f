// The resolver of this program stands in for the C library's, in the library too.
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>
#include <qxcore/host.h>

#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

namespace {

std::vector<std::string> g_asked;
std::map<std::string, std::string> g_hosts;

addrinfo* MakeRecord(const std::string& address) {
    auto* const record = static_cast<addrinfo*>(std::calloc(1, sizeof(addrinfo)));
    auto* const place = static_cast<sockaddr_in*>(std::calloc(1, sizeof(sockaddr_in)));
    std::memcpy(&place->sin_addr, address.data(), 4);
    place->sin_family = AF_INET;
    record->ai_family = AF_INET;
    record->ai_addrlen = sizeof *place;
    record->ai_addr = reinterpret_cast<sockaddr*>(place);
    return record;
}

}  // namespace

extern "C" int getaddrinfo(const char* node, const char*, const addrinfo*, addrinfo** result) {
    g_asked.emplace_back(node);
    const auto found = g_hosts.find(node);
    if (found == g_hosts.end()) {
        return EAI_NONAME;
    }
    *result = MakeRecord(found->second);
    return 0;
}

extern "C" void freeaddrinfo(addrinfo* list) noexcept {
    std::free(list->ai_addr);
    std::free(list);
}

namespace {

TEST(Resolver, GetsTheNameInLowerCaseAndLiteralsAsAddresses) {
    const std::pair<const char*, const char*> cases[] = {
        {"SERVER", "server"},
        {"FE80--1S4.IPv6-Literal.Net", "fe80::1%4"},
        {"host-s.ipv6-literal.net.example", "ho%t:%"},
        {"ipv6-literal.net", "ipv6-literal.net"},
        {".ipv6-literal.net", ""},
    };
    for (const auto& [name, asked] : cases) {
        addrinfo* list = nullptr;
        EXPECT_EQ(QXgetaddrinfo(name, nullptr, nullptr, &list), EAI_NONAME);
        EXPECT_EQ(g_asked.back(), asked);
    }
}

TEST(Resolver, IsAskedOnceForAName) {
    g_hosts = {{"localhost", std::string("\x7F\0\0\x01", 4)},
               {"here", std::string("\x7F\0\0\x01", 4)},
               {"there", std::string("\xC0\0\x02\x01", 4)}};
    g_asked.clear();
    for (const char* known : {"LOCALHOST", "127.0.0.1", "::1", ""}) {
        EXPECT_EQ(QXIsThisMyComputerA(known), 1);
    }
    EXPECT_EQ(g_asked, std::vector<std::string>{"localhost"});  // for the address list alone
    g_asked.clear();
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(QXIsThisMyComputerA("Here"), 1);
        EXPECT_EQ(QXIsThisMyComputerA("there"), 0);
        EXPECT_EQ(QXIsThisMyComputerA("nowhere"), 0);
    }
    EXPECT_EQ(g_asked, (std::vector<std::string>{"here", "there", "nowhere"}));
}

TEST(Resolver, NamesCountByTheirFirst1025Bytes) {
    const std::string longest(1025, 'x');
    EXPECT_EQ(QXIsThisMyComputerA((longest + "y").c_str()), 0);
    EXPECT_EQ(g_asked.back(), longest);
    const size_t asked = g_asked.size();
    EXPECT_EQ(QXIsThisMyComputerA((longest + "z").c_str()), 0);
    EXPECT_EQ(g_asked.size(), asked);
}

}  // namespace

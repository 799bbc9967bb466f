#include <qxcore/host.h>
#include <qxcore/system.h>

#include <algorithm>
#include <cstring>

#include "transcript/allowances.h"
#include "transcript/families.h"
#include "transcript/values.h"

namespace {

// What is resolved without a network. 0.0.0.0 is left out.
static_assert(allowance::kMissingAddressMayBeListed);
constexpr std::string_view kAddresses =
    "10.1.2.3 10.1.2.4 127.0.0.1 127.0.0.2 ::1 :: 2001:db8::7 2001:DB8:0:0::7 ::ffff:10.1.2.3 "
    "2001-db8--7.ipv6-literal.net 2001-DB8--7.IPv6-Literal.NET --1.ipv6-literal.net";

addrinfo* Resolve(Random& random, Line& line) {
    const std::string name = AnyWord(random, kAddresses);
    addrinfo* list = nullptr;
    const int32_t result =
        QXgetaddrinfo(name.c_str(), random.OneIn(2) ? "80" : nullptr, nullptr, &list);
    line.Add("name", name).Add("resolved", result == 0 && list != nullptr);
    return result == 0 ? list : nullptr;
}

void Compare(Random& random, Line& line) {
    addrinfo* const first = Resolve(random, line);
    addrinfo* const second = Resolve(random, line);
    line.Add("->", QXCompareAddressInformation(first, second));
    line.Add("none", QXCompareAddressInformation(first, nullptr));
    line.Add("none", QXCompareAddressInformation(nullptr, second));
    QXfreeaddrinfo(first);
    QXfreeaddrinfo(second);
}

// The host's own name in capitals among the others.
void IsThisMyComputer(Random& random, Line& line) {
    constexpr const char* kMine[] = {"LOCALHOST", "LocalHost", ""};
    char own[1026] = {};
    QXGetHostNameA(own, sizeof own);
    std::string name = random.OneIn(4) ? own : random.OneIn(3) ? random.Of(kMine) : "";
    line.Add("is", name.empty() ? "other" : name == own ? "own" : "local");
    if (name.empty()) {
        name = AnyWord(random, kAddresses);
        line.Add("name", name);
    }
    for (char& unit : name) {
        unit = unit >= 'a' && unit <= 'z' && random.OneIn(2) ? static_cast<char>(unit - 32) : unit;
    }
    line.Add("->", QXIsThisMyComputerA(name.c_str()));
    line.Add("->", QXIsThisMyComputerW(Widen(name).c_str()));
}

// Names come in buffers that are as long as they, and about so.
template <typename Unit>
auto Name(QXResult (*get)(Unit*, uint32_t)) {
    return [=](Random& random, Line& line) {
        Unit name[1026] = {};
        line.Result(get(name, 1026));
        const auto length = static_cast<uint32_t>(std::char_traits<Unit>::length(name));
        const uint32_t more = random.Below(4);
        std::vector<Unit> part(length + 4, '~');
        line.Add("more", more).Result(get(part.data(), length + more - 1));
        line.Add("whole", std::equal(name, name + length + 1, part.begin()));
        line.Add("behind", static_cast<uint32_t>(part[length + 1]));
    };
}

}  // namespace

Calls HostCalls() {
    return {
        {"QXCompareAddressInformation", Compare, 3}, {"QXIsThisMyComputer", IsThisMyComputer, 3},
        {"QXGetHostNameA", Name(QXGetHostNameA)},    {"QXGetHostName", Name(QXGetHostName)},
        {"QXGetUserName", Name(QXGetUserName)},
    };
}

// What the machine is, but for what each system counts in its own way.
void PrintSystem() {
    QXSystemInfoRecord info;
    std::memset(&info, 0xA5, sizeof info);
    Line line("QXGetSystemInfo");
    line.Add("size", sizeof info).Result(QXGetSystemInfo(&info, 0));
    line.Add("page", info.pageSize).Add("type", info.processorType);
    line.Add("level", info.processorLevel);
    line.Add("revision", info.processorRevision).Add("processors", info.numberOfProcessors);
    line.Add("reserved", info.reservedZero);
}

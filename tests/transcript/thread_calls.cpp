#include <qxcore/thread.h>

#include "transcript/call_lists.h"

namespace {

void* ReturnArgument(void* argument) {
    return argument;
}

void JoinOne(Random& random, Line& line) {
    constexpr uint64_t kValues[] = {0, 1, 0xFFFFFFFF, 0x123456789ABCDEF0};
    constexpr uint32_t kStackSizes[] = {0, 1, 5000, 65536, 2u << 20};
    const uint64_t value = random.Of(kValues);
    const uint32_t stackSize = random.Of(kStackSizes);
    QXHandle thread = nullptr;
    uint32_t id = 0;
    line.Hex("value", value).Add("stack", stackSize);
    line.Result(QXThreadCreate(ReturnArgument, reinterpret_cast<void*>(uintptr_t{value}), nullptr,
                               stackSize, &thread, &id));
    line.Add("named", reinterpret_cast<uintptr_t>(thread) == id);
    line.Add("finished", QXThreadIsFinished(thread));
    uint64_t exitValue = 5;
    line.Result(QXThreadJoin(thread, random.OneIn(4) ? nullptr : &exitValue));
    line.Hex("exit", exitValue).Add("finished", QXThreadIsFinished(thread));
    line.Result(QXThreadJoin(thread, &exitValue)).Hex("exit", exitValue);
}

void Yield(Random&, Line& line) {
    line.Result(QXThreadYield()).Add("finished", QXThreadIsFinished(nullptr));
}

void SetNoAffinity(Random&, Line& line) {
    const uint64_t none = 0;
    uint64_t previous = 5;
    line.Result(QXSetCpuAffinity(&none)).Result(QXGetSetCpuAffinity(&previous, &none));
    line.Hex("previous", previous);
}

}  // namespace

std::vector<Call> ThreadCalls() {
    return {
        {"QXThreadJoin", JoinOne, 2},
        {"QXThreadYield", Yield},
        {"QXSetCpuAffinity", SetNoAffinity},
    };
}

// What threads wait for, as long as one thread alone need not wait: mutexes, events, gates,
// semaphores also of a name, reader/writer locks; and threads that need not be waited for long.
#include <qxcore/event.h>
#include <qxcore/mutex.h>
#include <qxcore/named_semaphore.h>
#include <qxcore/rwlock.h>
#include <qxcore/semaphore.h>
#include <qxcore/thread.h>

#include <map>
#include <random>

#include "transcript/calls.h"

namespace {

using Operation = QXResult (*)(QXHandle);

// Locks of a kind. What is held of one is given back in the reverse order, also before its end.
struct Locks {
    Locks(size_t number, Operation destroyOne)
        : destroy(destroyOne), all(number, [this](QXHandle lock) { End(lock); }) {}

    QXResult GiveBack(QXHandle lock) {
        std::vector<Operation>& held = holds[lock];
        if (held.empty()) {
            return QX_S_OK;
        }
        const Operation giveBack = held.back();
        held.pop_back();
        return giveBack(lock);
    }
    QXResult End(QXHandle lock) {
        while (!holds[lock].empty()) {
            GiveBack(lock);
        }
        return destroy(lock);
    }

    const Operation destroy;
    std::map<QXHandle, std::vector<Operation>> holds;  // each by what gives it back
    Handles all;
};

auto Take(const std::shared_ptr<Locks>& locks, Operation take, Operation giveBack) {
    const auto takeOne = [=](QXHandle lock) {
        const QXResult result = take(lock);
        auto& held = locks->holds[lock];
        held.resize(held.size() + (QX_SUCCEEDED(result) ? 1 : 0), giveBack);
        return result;
    };
    return Row(takeOne, OpenOne({locks, &locks->all}));
}

// Null, empty or a name.
MaybeText<char> AnyName(Random& random) {
    return {random.OneIn(2) ? "" : "transcript", random.OneIn(3)};
}

constexpr uint32_t kMutexFlags[] = {0,
                                    0,
                                    QX_MUTEX_SPIN,
                                    QX_MUTEX_NOSTATS,
                                    QX_MUTEX_NOSTATS | QX_MUTEX_STATS,
                                    QX_MUTEX_NONRECURSIVE,
                                    0x0F00000F};
constexpr uint32_t kEventFlags[] = {0, QX_EVENT_MANUALRESET};
constexpr uint32_t kCounts[] = {0, 1, 2, 32766, 32767, 32768, 0x80000000};

void JoinOne(Random& random, Line& line) {
    constexpr uint64_t kValues[] = {0, 1, 0xFFFFFFFF, 0x123456789ABCDEF0};
    constexpr uint32_t kStackSizes[] = {0, 1, 5000, 65536, 2u << 20};
    const uint64_t value = random.Of(kValues);
    const uint32_t stackSize = random.Of(kStackSizes);
    const QXThreadRoutine giveBack = [](void* argument) { return argument; };
    QXHandle thread = nullptr;
    uint32_t id = 0;
    line.Hex("value", value).Add("stack", stackSize);
    line.Result(QXThreadCreate(giveBack, reinterpret_cast<void*>(uintptr_t{value}), nullptr,
                               stackSize, &thread, &id));
    line.Add("named", reinterpret_cast<uintptr_t>(thread) == id);
    line.Add("finished", QXThreadIsFinished(thread));
    uint64_t exitValue = 5;
    line.Result(QXThreadJoin(thread, random.OneIn(4) ? nullptr : &exitValue));
    line.Hex("exit", exitValue).Add("finished", QXThreadIsFinished(thread));
    line.Result(QXThreadJoin(thread, &exitValue)).Hex("exit", exitValue);
    const uint64_t none = 0;
    line.Result(QXThreadYield()).Result(QXSetCpuAffinity(&none));
    line.Result(QXGetSetCpuAffinity(&exitValue, &none)).Hex("previous", exitValue);
}

}  // namespace

Calls WaitingCalls() {
    const auto mutexes = std::make_shared<Locks>(2, QXMutexDestroy);
    const auto locks = std::make_shared<Locks>(1, QXRWLockDestroy);
    const std::shared_ptr<Handles> anyMutex(mutexes, &mutexes->all);
    const std::shared_ptr<Handles> anyLock(locks, &locks->all);
    const auto events = std::make_shared<Handles>(1, QXEventDestroy);
    const auto gates = std::make_shared<Handles>(1, QXGateDestroy);
    const auto semaphores = std::make_shared<Handles>(1, QXSemaphoreDestroy);
    const auto named = std::make_shared<Handles>(2, QXNamedSemClose);
    // All of one name.
    static const std::string s_name = "transcript-" + std::to_string(std::random_device{}());
    const auto semaphoreName = [](Random&) { return ShownText<char>{u"a name", s_name}; };
    constexpr auto kZero = Within<0>;
    // One of each, for the calls before others are made.
    QXMutexCreate(nullptr, 0, &anyMutex->At(0));
    QXRWLockCreate(nullptr, 0, &anyLock->At(0));
    QXEventCreate(nullptr, 0, &events->At(0));
    QXGateCreate(nullptr, 0, &gates->At(0));
    QXSemaphoreCreate(1, nullptr, 0, &semaphores->At(0));
    QXNamedSemOpen(s_name.c_str(), 1, &named->At(0));
    return {
        {NAMED(QXMutexCreate, AnyName, AnyOf<kMutexFlags>, NewOne(anyMutex)), 2},
        {"QXMutexAcquire", Take(mutexes, QXMutexAcquire, QXMutexRelease), 2},
        {"QXMutexTryAcquire", Take(mutexes, QXMutexTryAcquire, QXMutexRelease)},
        {"QXMutexRelease",
         Row([=](QXHandle mutex) { return mutexes->GiveBack(mutex); }, OpenOne(anyMutex))},
        {NAMED(QXMutexAssertOwnership, OpenOne(anyMutex), Within<0, 2>)},
        {"QXMutexDestroy",
         Row([=](QXHandle mutex) { return mutexes->End(mutex); }, LastUse(anyMutex))},
        {NAMED(QXEventCreate, AnyName, AnyOf<kEventFlags>, NewOne(events))},
        {NAMED(QXEventSignal, OpenOne(events)), 2},
        {NAMED(QXEventReset, OpenOne(events))},
        {NAMED(QXEventTimedWait, OpenOne(events), kZero), 2},
        {NAMED(QXGateCreate, AnyName, kZero, NewOne(gates))},
        {NAMED(QXGateOpen, OpenOne(gates))},
        {NAMED(QXGateClose, OpenOne(gates))},
        {NAMED(QXGateTryWait, OpenOne(gates))},
        {NAMED(QXGateTimedWait, OpenOne(gates), kZero)},
        {NAMED(QXSemaphoreCreate, AnyOf<kCounts>, AnyName, kZero, NewOne(semaphores))},
        {NAMED(QXSemaphorePost, OpenOne(semaphores)), 2},
        {NAMED(QXSemaphoreTryWait, OpenOne(semaphores)), 2},
        {NAMED(QXSemaphoreGetValue, OpenOne(semaphores), Unset<uint32_t>), 2},
        {NAMED(QXNamedSemOpen, semaphoreName, AnyOf<kCounts>, NewOne(named)), 2},
        {NAMED(QXNamedSemPost, OpenOne(named)), 2},
        {NAMED(QXNamedSemTryWait, OpenOne(named)), 2},
        {NAMED(QXRWLockCreate, AnyName, kZero, NewOne(anyLock))},
        {"QXRWLockTryAcquireRead", Take(locks, QXRWLockTryAcquireRead, QXRWLockReleaseRead), 2},
        {"QXRWLockTryAcquireWrite", Take(locks, QXRWLockTryAcquireWrite, QXRWLockReleaseWrite), 2},
        {"QXRWLockRelease",
         Row([=](QXHandle lock) { return locks->GiveBack(lock); }, OpenOne(anyLock)), 2},
        {"QXThreadJoin", JoinOne, 2},
    };
}

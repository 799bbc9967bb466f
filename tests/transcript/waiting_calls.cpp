// What threads wait for, as long as one thread alone need not wait: mutexes, events, gates,
// semaphores also of a name, reader/writer locks; and threads that need not be waited for long.
#include <qxcore/event.h>
#include <qxcore/mutex.h>
#include <qxcore/named_semaphore.h>
#include <qxcore/rwlock.h>
#include <qxcore/semaphore.h>
#include <qxcore/thread.h>

#include <random>
#include <utility>

#include "transcript/call_lists.h"

namespace {

using Operation = QXResult (*)(QXHandle);
using Create = QXResult (*)(Random& random, Line& line, QXHandle* out);

struct Object {
    QXHandle handle = nullptr;
    std::vector<Operation> holds;  // each by what gives it back
};

// Some objects of a kind. What a thread holds of one it gives back in the reverse order.
class Waited : public Unshared {
  public:
    Waited(Create create, Operation destroy, size_t number = 1)
        : m_create(create), m_destroy(destroy), m_objects(number) {}
    ~Waited() {
        for (Object& object : m_objects) {
            End(object);
        }
    }

    void Renew(Random& random, Line& line) {
        Object& object = Any(random, line);
        End(object);
        Make(object, random, line);
    }

    void Destroy(Random& random, Line& line) {
        Object& object = Any(random, line);
        if (object.handle != nullptr) {
            line.Result(End(object));
        }
    }

    // Prints what a use of any object gives. One that is not there is made first, if it can be.
    template <typename Use>
    void With(Random& random, Line& line, Use use) {
        Object& object = Any(random, line);
        if (object.handle != nullptr || Make(object, random, line)) {
            use(object);
        }
    }

    void Release(Random& random, Line& line) {
        Object& object = Any(random, line);
        if (!object.holds.empty()) {
            line.Result(GiveBack(object));
        }
    }

  private:
    Object& Any(Random& random, Line& line) {
        const uint32_t index = random.Below(m_objects.size());
        line.Add("object", index).Add("holds", m_objects[index].holds.size());
        return m_objects[index];
    }

    bool Make(Object& object, Random& random, Line& line) {
        const QXResult result = m_create(random, line, &object.handle);
        line.Result(result).Handle("handle", object.handle);
        object.handle = QX_SUCCEEDED(result) ? object.handle : nullptr;
        return QX_SUCCEEDED(result);
    }

    static QXResult GiveBack(Object& object) {
        const Operation giveBack = object.holds.back();
        object.holds.pop_back();
        return giveBack(object.handle);
    }

    QXResult End(Object& object) {
        while (!object.holds.empty()) {
            GiveBack(object);
        }
        const QXHandle handle = std::exchange(object.handle, nullptr);
        return handle != nullptr ? m_destroy(handle) : QX_S_OK;
    }

    const Create m_create;
    const Operation m_destroy;
    std::vector<Object> m_objects;
};

using Objects = std::shared_ptr<Waited>;

MakeCall Use(const Objects& objects, Operation operation) {
    return [=](Random& random, Line& line) {
        objects->With(random, line, [&](Object& it) { line.Result(operation(it.handle)); });
    };
}

// A wait that ends at once.
MakeCall Poll(const Objects& objects, QXResult (*wait)(QXHandle, uint32_t)) {
    return [=](Random& random, Line& line) {
        objects->With(random, line, [&](Object& it) { line.Result(wait(it.handle, 0)); });
    };
}

MakeCall Take(const Objects& objects, Operation take, Operation giveBack) {
    return [=](Random& random, Line& line) {
        objects->With(random, line, [&](Object& it) {
            const QXResult result = take(it.handle);
            line.Result(result);
            it.holds.resize(it.holds.size() + (QX_SUCCEEDED(result) ? 1 : 0), giveBack);
        });
    };
}

QXResult NewMutex(Random& random, Line& line, QXHandle* out) {
    constexpr uint32_t kFlags[] = {0,
                                   0,
                                   QX_MUTEX_SPIN,
                                   QX_MUTEX_NOSTATS,
                                   QX_MUTEX_NOSTATS | QX_MUTEX_STATS,
                                   QX_MUTEX_NONRECURSIVE,
                                   0x0F00000F};
    constexpr const char* kNames[] = {nullptr, "", "transcript"};
    const uint32_t flags = random.Of(kFlags);
    line.Hex("flags", flags);
    return QXMutexCreate(random.Of(kNames), flags, out);
}

QXResult NewEvent(Random& random, Line& line, QXHandle* out) {
    const uint32_t flags = random.OneIn(2) ? QX_EVENT_MANUALRESET : 0;
    line.Hex("flags", flags);
    return QXEventCreate(random.OneIn(2) ? "transcript" : nullptr, flags, out);
}

QXResult NewGate(Random&, Line&, QXHandle* out) {
    return QXGateCreate(nullptr, 0, out);
}

QXResult NewLock(Random&, Line&, QXHandle* out) {
    return QXRWLockCreate("transcript", 0, out);
}

uint32_t AnyCount(Random& random, Line& line) {
    constexpr uint32_t kCounts[] = {0, 1, 2, 32766, 32767, 32768, 0x80000000};
    const uint32_t count = random.Of(kCounts);
    line.Add("count", count);
    return count;
}

QXResult NewSemaphore(Random& random, Line& line, QXHandle* out) {
    return QXSemaphoreCreate(AnyCount(random, line), nullptr, 0, out);
}

// All of one name.
QXResult NewNamedSemaphore(Random& random, Line& line, QXHandle* out) {
    static const std::string s_name = "transcript-" + std::to_string(std::random_device{}());
    return QXNamedSemOpen(s_name.c_str(), AnyCount(random, line), out);
}

MakeCall AssertOwnership(const Objects& mutexes) {
    return [=](Random& random, Line& line) {
        const auto wanted = static_cast<int16_t>(random.Below(3));
        mutexes->With(random, line, [&](Object& it) {
            line.Add("wanted", wanted).Add("->", QXMutexAssertOwnership(it.handle, wanted));
        });
    };
}

MakeCall GetValue(const Objects& semaphores) {
    return [=](Random& random, Line& line) {
        semaphores->With(random, line, [&](Object& it) {
            uint32_t count = 0;
            line.Result(QXSemaphoreGetValue(it.handle, &count)).Add("count", count);
        });
    };
}

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

std::vector<Call> WaitingCalls() {
    const auto mutexes = std::make_shared<Waited>(NewMutex, QXMutexDestroy, 2);
    const auto events = std::make_shared<Waited>(NewEvent, QXEventDestroy);
    const auto gates = std::make_shared<Waited>(NewGate, QXGateDestroy);
    const auto semaphores = std::make_shared<Waited>(NewSemaphore, QXSemaphoreDestroy);
    const auto named = std::make_shared<Waited>(NewNamedSemaphore, QXNamedSemClose, 2);
    const auto locks = std::make_shared<Waited>(NewLock, QXRWLockDestroy);
    return {
        {"QXMutexCreate", Member(mutexes, &Waited::Renew)},
        {"QXMutexAcquire", Take(mutexes, QXMutexAcquire, QXMutexRelease), 2},
        {"QXMutexTryAcquire", Take(mutexes, QXMutexTryAcquire, QXMutexRelease)},
        {"QXMutexRelease", Member(mutexes, &Waited::Release)},
        {"QXMutexAssertOwnership", AssertOwnership(mutexes)},
        {"QXMutexDestroy", Member(mutexes, &Waited::Destroy)},
        {"QXEventCreate", Member(events, &Waited::Renew)},
        {"QXEventSignal", Use(events, QXEventSignal), 2},
        {"QXEventReset", Use(events, QXEventReset)},
        {"QXEventTimedWait", Poll(events, QXEventTimedWait), 2},
        {"QXGateCreate", Member(gates, &Waited::Renew)},
        {"QXGateOpen", Use(gates, QXGateOpen)},
        {"QXGateClose", Use(gates, QXGateClose)},
        {"QXGateTryWait", Use(gates, QXGateTryWait)},
        {"QXGateTimedWait", Poll(gates, QXGateTimedWait)},
        {"QXSemaphoreCreate", Member(semaphores, &Waited::Renew)},
        {"QXSemaphorePost", Use(semaphores, QXSemaphorePost), 2},
        {"QXSemaphoreTryWait", Use(semaphores, QXSemaphoreTryWait), 2},
        {"QXSemaphoreGetValue", GetValue(semaphores), 2},
        {"QXNamedSemOpen", Member(named, &Waited::Renew), 2},
        {"QXNamedSemPost", Use(named, QXNamedSemPost), 2},
        {"QXNamedSemTryWait", Use(named, QXNamedSemTryWait), 2},
        {"QXRWLockCreate", Member(locks, &Waited::Renew)},
        {"QXRWLockTryAcquireRead", Take(locks, QXRWLockTryAcquireRead, QXRWLockReleaseRead), 2},
        {"QXRWLockTryAcquireWrite", Take(locks, QXRWLockTryAcquireWrite, QXRWLockReleaseWrite), 2},
        {"QXRWLockRelease", Member(locks, &Waited::Release), 2},
        {"QXThreadJoin", JoinOne, 2},
    };
}

#include <qxcore/event.h>
#include <qxcore/rwlock.h>
#include <qxcore/semaphore.h>

#include "transcript/call_lists.h"

namespace {

using Operation = QXResult (*)(QXHandle);

// An object that one thread waits for as long as it need not wait.
class Waited {
  public:
    Waited(Operation destroy, std::function<QXResult(Random&, Line&, QXHandle*)> create)
        : m_destroy(destroy), m_create(std::move(create)) {}
    ~Waited() { Destroy(); }
    Waited(const Waited&) = delete;
    Waited& operator=(const Waited&) = delete;

    void Create(Random& random, Line& line) {
        Destroy();
        const QXResult result = m_create(random, line, &m_handle);
        line.Result(result).Handle("handle", m_handle);
        m_handle = QX_SUCCEEDED(result) ? m_handle : nullptr;
    }

    // Prints what an operation gives, if there is an object.
    template <typename Use>
    void With(Use use) const {
        if (m_handle != nullptr) {
            use(m_handle);
        }
    }

  private:
    void Destroy() {
        if (m_handle != nullptr) {
            m_destroy(m_handle);
            m_handle = nullptr;
        }
    }

    Operation m_destroy;
    std::function<QXResult(Random&, Line&, QXHandle*)> m_create;
    QXHandle m_handle = nullptr;
};

MakeCall Create(const std::shared_ptr<Waited>& object) {
    return Member(object, &Waited::Create);
}

MakeCall Use(const std::shared_ptr<Waited>& object, Operation operation) {
    return [=](Random&, Line& line) {
        object->With([&](QXHandle handle) { line.Result(operation(handle)); });
    };
}

// A wait that ends at once.
MakeCall Poll(const std::shared_ptr<Waited>& object, QXResult (*wait)(QXHandle, uint32_t)) {
    return [=](Random&, Line& line) {
        object->With([&](QXHandle handle) { line.Result(wait(handle, 0)); });
    };
}

QXResult NewEvent(Random& random, Line& line, QXHandle* handle) {
    const uint32_t flags = random.OneIn(2) ? QX_EVENT_MANUALRESET : 0;
    line.Hex("flags", flags);
    return QXEventCreate(random.OneIn(2) ? "transcript" : nullptr, flags, handle);
}

QXResult NewGate(Random&, Line&, QXHandle* handle) {
    return QXGateCreate(nullptr, 0, handle);
}

QXResult NewSemaphore(Random& random, Line& line, QXHandle* handle) {
    constexpr uint32_t kCounts[] = {0, 1, 2, 32766, 32767, 32768, 0x80000000};
    const uint32_t count = random.Of(kCounts);
    line.Add("count", count);
    return QXSemaphoreCreate(count, nullptr, 0, handle);
}

// Holds of one thread, given back as they were taken.
class ReadersWriter {
  public:
    ReadersWriter() { QXRWLockCreate("transcript", 0, &m_lock); }
    ~ReadersWriter() {
        while (!m_holds.empty()) {
            GiveBack();
        }
        QXRWLockDestroy(m_lock);
    }
    ReadersWriter(const ReadersWriter&) = delete;
    ReadersWriter& operator=(const ReadersWriter&) = delete;

    void TakeRead(Random&, Line& line) { Take(line, QXRWLockTryAcquireRead, QXRWLockReleaseRead); }
    void TakeWrite(Random&, Line& line) {
        Take(line, QXRWLockTryAcquireWrite, QXRWLockReleaseWrite);
    }
    void Release(Random&, Line& line) {
        if (!m_holds.empty()) {
            line.Result(GiveBack());
        }
    }

  private:
    void Take(Line& line, Operation take, Operation giveBack) {
        const QXResult result = take(m_lock);
        line.Add("holds", m_holds.size()).Result(result);
        if (QX_SUCCEEDED(result)) {
            m_holds.push_back(giveBack);
        }
    }
    QXResult GiveBack() {
        const QXResult result = m_holds.back()(m_lock);
        m_holds.pop_back();
        return result;
    }

    QXHandle m_lock = nullptr;
    std::vector<Operation> m_holds;
};

}  // namespace

std::vector<Call> WaitingCalls() {
    const auto event = std::make_shared<Waited>(QXEventDestroy, NewEvent);
    const auto gate = std::make_shared<Waited>(QXGateDestroy, NewGate);
    const auto semaphore = std::make_shared<Waited>(QXSemaphoreDestroy, NewSemaphore);
    const auto lock = std::make_shared<ReadersWriter>();
    const MakeCall value = [semaphore](Random&, Line& line) {
        semaphore->With([&](QXHandle handle) {
            uint32_t count = 0;
            line.Result(QXSemaphoreGetValue(handle, &count)).Add("count", count);
        });
    };
    return {
        {"QXEventCreate", Create(event)},
        {"QXEventSignal", Use(event, QXEventSignal), 2},
        {"QXEventReset", Use(event, QXEventReset)},
        {"QXEventTimedWait", Poll(event, QXEventTimedWait), 2},
        {"QXGateCreate", Create(gate)},
        {"QXGateOpen", Use(gate, QXGateOpen)},
        {"QXGateClose", Use(gate, QXGateClose)},
        {"QXGateTryWait", Use(gate, QXGateTryWait)},
        {"QXGateTimedWait", Poll(gate, QXGateTimedWait)},
        {"QXSemaphoreCreate", Create(semaphore)},
        {"QXSemaphorePost", Use(semaphore, QXSemaphorePost), 2},
        {"QXSemaphoreTryWait", Use(semaphore, QXSemaphoreTryWait), 2},
        {"QXSemaphoreGetValue", value, 2},
        {"QXRWLockTryAcquireRead", Member(lock, &ReadersWriter::TakeRead)},
        {"QXRWLockTryAcquireWrite", Member(lock, &ReadersWriter::TakeWrite)},
        {"QXRWLockRelease", Member(lock, &ReadersWriter::Release), 2},
    };
}

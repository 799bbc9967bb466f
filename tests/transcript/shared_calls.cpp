#include <qxcore/named_semaphore.h>
#include <qxcore/shared_mem.h>

#include <random>
#include <utility>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"

namespace {

// Two handles of every name, and a view, which come and go; the names are this list's own.
class SharedObjects {
  public:
    SharedObjects() : m_name("transcript-" + std::to_string(std::random_device{}())) {}
    ~SharedObjects() {
        Detach();
        for (QXHandle& mapping : m_mappings) {
            CloseMapping(mapping);
        }
        for (const QXHandle semaphore : m_semaphores) {
            QXNamedSemClose(semaphore);
        }
    }
    SharedObjects(const SharedObjects&) = delete;
    SharedObjects& operator=(const SharedObjects&) = delete;

    void OpenSemaphore(Random& random, Line& line) {
        constexpr uint32_t kCounts[] = {0, 1, 2, 32767, 32768};
        QXHandle& semaphore = m_semaphores[random.Below(2)];
        QXNamedSemClose(semaphore);
        const uint32_t count = random.Of(kCounts);
        line.Add("count", count).Result(QXNamedSemOpen(m_name.c_str(), count, &semaphore));
        line.Handle("handle", semaphore);
        semaphore = semaphore == QX_INVALID_HANDLE ? nullptr : semaphore;
    }
    void Post(Random& random, Line& line) { Use(random, line, QXNamedSemPost); }
    void TryWait(Random& random, Line& line) { Use(random, line, QXNamedSemTryWait); }

    void OpenMapping(Random& random, Line& line) {
        constexpr uint32_t kFlags[] = {0,
                                       QX_FILE_READ,
                                       QX_FILE_WRITE,
                                       QX_FILE_CREATE,
                                       QX_FILE_EXCLUSIVE,
                                       QX_FILE_CREATE | QX_FILE_EXCLUSIVE,
                                       QX_FILE_READ | QX_FILE_WRITE | QX_FILE_CREATE};
        constexpr uint32_t kSizes[] = {0, 1, 4096, 70000};
        QXHandle& mapping = m_mappings[random.Below(2)];
        CloseMapping(mapping);
        if (allowance::kNameGoesWithTheLastHandle && !HasMapping()) {
            Detach();
        }
        const uint32_t flags = random.Of(kFlags);
        const uint32_t size = random.Of(kSizes);
        const QXResult result = QXSharedMemOpen(m_name.c_str(), flags, 0, size, &mapping);
        line.Hex("flags", flags).Add("size", size).Result(result).Handle("handle", mapping);
    }
    void Attach(Random& random, Line& line) {
        constexpr uint32_t kFlags[] = {QX_FILE_READ, QX_FILE_WRITE, QX_FILE_READ | QX_FILE_WRITE};
        const QXHandle mapping = m_mappings[random.Below(2)];
        if (mapping == QX_INVALID_HANDLE) {
            return;
        }
        Detach();
        const uint32_t flags = random.Of(kFlags);
        const QXResult result = QXSharedMemAttach(mapping, flags, &m_view);
        m_mayWrite = flags != QX_FILE_READ;
        line.Hex("flags", flags).Result(result).Add("view", m_view != nullptr);
    }
    void Touch(Random& random, Line& line) {
        if (m_view == nullptr) {
            return;
        }
        auto* const bytes = static_cast<unsigned char*>(m_view);
        line.Add("last", bytes[4095]);
        if (m_mayWrite) {
            bytes[4095] = static_cast<unsigned char>(random.Below(256));
        }
    }
    void DetachTwice(Random&, Line& line) {
        void* const view = m_view;
        if (view != nullptr) {
            line.Result(Detach()).Result(QXSharedMemDetach(view));
        }
    }

  private:
    void Use(Random& random, Line& line, QXResult (*operation)(QXHandle)) {
        const QXHandle semaphore = m_semaphores[random.Below(2)];
        if (semaphore != nullptr) {
            line.Result(operation(semaphore));
        }
    }
    QXResult Detach() {
        void* const view = std::exchange(m_view, nullptr);
        return view != nullptr ? QXSharedMemDetach(view) : QX_S_OK;
    }
    static void CloseMapping(QXHandle& mapping) {
        if (mapping != QX_INVALID_HANDLE) {
            QXSharedMemClose(std::exchange(mapping, QX_INVALID_HANDLE));
        }
    }
    bool HasMapping() const {
        return m_mappings[0] != QX_INVALID_HANDLE || m_mappings[1] != QX_INVALID_HANDLE;
    }

    const std::string m_name;
    QXHandle m_semaphores[2] = {};
    QXHandle m_mappings[2] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE};
    void* m_view = nullptr;
    bool m_mayWrite = false;
};

}  // namespace

std::vector<Call> SharedCalls() {
    const auto objects = std::make_shared<SharedObjects>();
    return {
        {"QXNamedSemOpen", Member(objects, &SharedObjects::OpenSemaphore)},
        {"QXNamedSemPost", Member(objects, &SharedObjects::Post), 2},
        {"QXNamedSemTryWait", Member(objects, &SharedObjects::TryWait), 2},
        {"QXSharedMemOpen", Member(objects, &SharedObjects::OpenMapping), 2},
        {"QXSharedMemAttach", Member(objects, &SharedObjects::Attach), 2},
        {"shared memory", Member(objects, &SharedObjects::Touch), 2},
        {"QXSharedMemDetach", Member(objects, &SharedObjects::DetachTwice)},
    };
}

#include <qxcore/shared_mem.h>

#include <random>
#include <utility>

#include "transcript/allowances.h"
#include "transcript/call_lists.h"

namespace {

// Two handles of one name, and a view, which come and go; the name is this list's own.
class SharedMemory : public Unshared {
  public:
    ~SharedMemory() {
        Detach();
        for (QXHandle& mapping : m_mappings) {
            CloseMapping(mapping);
        }
    }

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

    const std::string m_name = "transcript-" + std::to_string(std::random_device{}());
    QXHandle m_mappings[2] = {QX_INVALID_HANDLE, QX_INVALID_HANDLE};
    void* m_view = nullptr;
    bool m_mayWrite = false;
};

}  // namespace

std::vector<Call> SharedMemoryCalls() {
    const auto memory = std::make_shared<SharedMemory>();
    return {
        {"QXSharedMemOpen", Member(memory, &SharedMemory::OpenMapping), 2},
        {"QXSharedMemAttach", Member(memory, &SharedMemory::Attach), 2},
        {"shared memory", Member(memory, &SharedMemory::Touch), 2},
        {"QXSharedMemDetach", Member(memory, &SharedMemory::DetachTwice)},
    };
}

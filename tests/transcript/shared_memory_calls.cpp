#include <qxcore/shared_mem.h>

#include <array>
#include <random>

#include "transcript/allowances.h"
#include "transcript/calls.h"

namespace {

constexpr uint32_t kFlags[] = {0,
                               QX_FILE_READ,
                               QX_FILE_WRITE,
                               QX_FILE_CREATE,
                               QX_FILE_EXCLUSIVE,
                               QX_FILE_CREATE | QX_FILE_EXCLUSIVE,
                               QX_FILE_READ | QX_FILE_WRITE | QX_FILE_CREATE};
constexpr uint32_t kViewFlags[] = {QX_FILE_READ, QX_FILE_WRITE, QX_FILE_READ | QX_FILE_WRITE};
constexpr uint32_t kSizes[] = {0, 1, 4096, 70000};

// Two handles of one name, and a view, which come and go; the name is this list's own.
struct SharedMemory {
    const std::string name = "transcript-" + std::to_string(std::random_device{}());
    Handles mappings{2, QXSharedMemClose};
    Handles view{1, QXSharedMemDetach};
    bool mayWrite = false;
};

}  // namespace

Calls SharedMemoryCalls() {
    const auto memory = std::make_shared<SharedMemory>();
    const std::shared_ptr<Handles> mappings(memory, &memory->mappings);
    const std::shared_ptr<Handles> view(memory, &memory->view);
    const auto open = [=](uint32_t flags, uint32_t size, QXHandle* out) {
        if (allowance::kNameGoesWithTheLastHandle && mappings->AreAllClosed()) {
            view->CloseAll();
        }
        return QXSharedMemOpen(memory->name.c_str(), flags, 0, size, out);
    };
    const auto attach = [=](QXHandle mapping, uint32_t flags, void** address) {
        memory->mayWrite = flags != QX_FILE_READ;
        return QXSharedMemAttach(mapping, flags, address);
    };
    const auto touch = [=](void* bytes, uint8_t value) {
        uint8_t* const last = static_cast<uint8_t*>(bytes) + 4095;
        return memory->mayWrite ? std::exchange(*last, value) : *last;
    };
    const auto detachTwice = [](void* address) {
        const QXResult first = QXSharedMemDetach(address);
        return std::array{first, QXSharedMemDetach(address)};
    };
    return {
        {"QXSharedMemOpen", Row(open, AnyOf<kFlags>, AnyOf<kSizes>, NewOne(mappings)), 2},
        {"QXSharedMemAttach", Row(attach, OpenOne(mappings), AnyOf<kViewFlags>, NewOne(view)), 2},
        {"shared memory", Row(touch, OpenOne(view), Within<0, 255>), 2},
        {"QXSharedMemDetach", Row(detachTwice, LastUse(view))},
    };
}

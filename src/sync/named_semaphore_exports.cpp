// The semaphores of semaphore_exports.cpp, by the names of their own family.
#include <qxcore/named_semaphore.h>
#include <qxcore/semaphore.h>

namespace {

// The lower bit has no effect.
constexpr uint32_t kNamedFlags = QX_SEMAPHORE_NAMED | 0x1;

}  // namespace

QXResult QXNamedSemOpen(const char* name, uint32_t count, QXHandle* out) {
    return QXSemaphoreCreate(count, name, kNamedFlags, out);
}

QXResult QXNamedSemClose(QXHandle semaphore) {
    return QXSemaphoreDestroy(semaphore);
}

QXResult QXNamedSemPost(QXHandle semaphore) {
    return QXSemaphorePost(semaphore);
}

QXResult QXNamedSemWait(QXHandle semaphore) {
    return QXSemaphoreWait(semaphore);
}

QXResult QXNamedSemTryWait(QXHandle semaphore) {
    return QXSemaphoreTryWait(semaphore);
}

QXResult QXNamedSemGetValue(QXHandle semaphore, uint32_t* value) {
    return QXSemaphoreGetValue(semaphore, value);
}

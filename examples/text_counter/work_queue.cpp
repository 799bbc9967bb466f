#include "work_queue.h"

namespace {

constexpr uint32_t kRoom = 256;

}  // namespace

WorkQueue::WorkQueue() {
    Check(QXMutexCreate("WorkQueue", QX_MUTEX_STATS, m_lock.Slot()), "QXMutexCreate");
    Check(QXSemaphoreCreate(kRoom, nullptr, 0, m_room.Slot()), "QXSemaphoreCreate");
    Check(QXSemaphoreCreate(0, nullptr, 0, m_filled.Slot()), "QXSemaphoreCreate");
}

void WorkQueue::Push(FileReport* file) {
    QXSemaphoreWait(m_room);
    {
        const Locked locked(m_lock);
        m_files.push(file);
    }
    QXSemaphorePost(m_filled);
}

void WorkQueue::Close() {
    QXSemaphorePost(m_filled);
}

FileReport* WorkQueue::Pop() {
    QXSemaphoreWait(m_filled);
    FileReport* const file = Take();
    // A post without a file is the end, which is passed on to the next worker.
    QXSemaphorePost(file != nullptr ? m_room : m_filled);
    return file;
}

FileReport* WorkQueue::Take() {
    const Locked locked(m_lock);
    if (m_files.empty()) {
        return nullptr;
    }
    FileReport* const file = m_files.front();
    m_files.pop();
    return file;
}

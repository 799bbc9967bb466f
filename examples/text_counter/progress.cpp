#include "progress.h"

#include <cinttypes>
#include <cstdio>

namespace {

constexpr uint32_t kInterval = 100;
constexpr char kClearedLine[] = "\r                                        \r";

}  // namespace

Progress::Progress(bool isShown) {
    Check(QXMutexCreate("Progress", QX_MUTEX_STATS, m_lock.Slot()), "QXMutexCreate");
    Check(QXEventCreate("Progress::m_end", 0, m_end.Slot()), "QXEventCreate");
    if (isShown) {
        m_thread = std::make_unique<Thread>([this] { ShowUntilTheEnd(); });
    }
}

Progress::~Progress() {
    Hide();
}

void Progress::Hide() {
    QXEventSignal(m_end);
    m_thread.reset();
}

void Progress::Add(uint64_t bytes) {
    const Locked locked(m_lock);
    ++m_done.files;
    m_done.bytes += bytes;
}

Progress::Done Progress::Look() {
    const Locked locked(m_lock);
    return m_done;
}

// Nobody waits for the terminal while the lock is held.
void Progress::Show() {
    const Done done = Look();
    std::fprintf(stderr, "\r%" PRIu64 " files, %.1f MB", done.files,
                 static_cast<double>(done.bytes) / 1e6);
    std::fflush(stderr);
}

// What is done sooner shows nothing.
void Progress::ShowUntilTheEnd() {
    while (QXEventTimedWait(m_end, kInterval) == QX_E_TIMEOUT) {
        Show();
    }
    std::fputs(kClearedLine, stderr);
}

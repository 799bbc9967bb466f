// A thread that runs a function, and whose end its owner waits for.
#ifndef EXAMPLES_THREAD_H
#define EXAMPLES_THREAD_H

#include <functional>

#include "support.h"

class Thread {
  public:
    explicit Thread(std::function<void()> run) : m_run(std::move(run)) {
        uint32_t number;
        Check(QXThreadCreate(Run, this, nullptr, 0, &m_thread, &number), "QXThreadCreate");
    }
    ~Thread() { QXThreadJoin(m_thread, nullptr); }
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

  private:
    static void* Run(void* self) {
        static_cast<Thread*>(self)->m_run();
        return nullptr;
    }

    std::function<void()> m_run;
    QXHandle m_thread = QX_INVALID_HANDLE;
};

#endif

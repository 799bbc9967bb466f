// A thread that takes files from the queue and has them counted by a component object of its own.
#ifndef EXAMPLES_WORKER_H
#define EXAMPLES_WORKER_H

#include "component.h"
#include "progress.h"
#include "thread.h"
#include "work_queue.h"

class Worker {
  public:
    Worker(CounterObject counter, std::u16string encoding, WorkQueue* queue, Progress* progress);
    // Takes what is left in the queue first.
    ~Worker();

  private:
    void CountFiles();
    QXResult CountFile(const std::u16string& path, TextCounts* counts);

    CounterObject m_counter;
    std::u16string m_encoding;
    WorkQueue* m_queue;
    Progress* m_progress;
    std::string m_text;
    Thread m_thread;
};

#endif

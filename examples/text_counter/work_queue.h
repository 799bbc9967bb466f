// The files that wait for a worker. It has an end: nobody adds files faster than they are taken.
#ifndef EXAMPLES_WORK_QUEUE_H
#define EXAMPLES_WORK_QUEUE_H

#include <queue>

#include "file_report.h"
#include "support.h"

class WorkQueue {
  public:
    WorkQueue();

    // Waits for room.
    void Push(FileReport* file);
    // No file will come any more. May be said several times.
    void Close();
    // Waits for a file. Null behind the last one.
    FileReport* Pop();

    QXHandle Lock() const { return m_lock; }

  private:
    FileReport* Take();

    Mutex m_lock;
    Semaphore m_room;
    Semaphore m_filled;
    std::queue<FileReport*> m_files;
};

#endif

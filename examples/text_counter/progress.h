// Counts what is done and, where somebody looks on, shows it in a line that it takes away again.
#ifndef EXAMPLES_PROGRESS_H
#define EXAMPLES_PROGRESS_H

#include <memory>

#include "support.h"
#include "thread.h"

class Progress {
  public:
    explicit Progress(bool isShown);
    ~Progress();

    // Takes the line away, for good.
    void Hide();

    // A worker has done with a file.
    void Add(uint64_t bytes);

    QXHandle Lock() const { return m_lock; }

  private:
    struct Done {
        uint64_t files;
        uint64_t bytes;
    };
    Done Look();
    void Show();
    void ShowUntilTheEnd();

    Mutex m_lock;
    Done m_done = {};
    Event m_end;
    std::unique_ptr<Thread> m_thread;
};

#endif

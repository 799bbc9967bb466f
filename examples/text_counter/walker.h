// Finds files, hands them to the queue, and keeps a report on each.
#ifndef EXAMPLES_WALKER_H
#define EXAMPLES_WALKER_H

#include "file_report.h"
#include "work_queue.h"

class Walker {
  public:
    Walker(WorkQueue* queue, FileReports* reports) : m_queue(queue), m_reports(reports) {}

    // A file, or a directory with all that is below it, in the order of the names.
    void Walk(const std::u16string& path);
    void AddFailure(const std::u16string& path, QXResult result);

  private:
    void WalkDirectory(const std::u16string& path);
    void AddFile(const std::u16string& path);

    WorkQueue* m_queue;
    FileReports* m_reports;
};

#endif
